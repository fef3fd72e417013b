// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_PICTUREREADER_H
#define ORV_HOST_CLI_GRAPH_PICTUREREADER_H

#include "TreePicture.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

class ClientSession;
struct ClassDef;

/// The part of the tree that is wanted.
struct TreeExtent {
    std::string dn;           ///< external; empty: from the top level
    std::uint64_t depth;      ///< levels below it
    std::uint64_t objects;    ///< the limit; as many again of those that are referred to
    bool wantsValues = false; ///< the values of all attributes, not only references
};

/// Reads a part of the MO tree like a client, through the component's tables. One thread.
class PictureReader {
public:
    /// \p session must outlive the reader, and the transaction must stay open until it is done.
    PictureReader(ClientSession& session, unsigned long txHandle)
        : mSession(session), mTxHandle(txHandle) {}

    /// Throws OperationError if there is no object extent.dn or the component refuses something,
    /// and AnswerError if there are more objects than wanted. The objects are counted level by
    /// level; those of the level that exceeds the limit are not read.
    TreePicture read(const TreeExtent& extent);

private:
    using Position = std::size_t;

    /// An object whose children are read next; without a position it is the top level.
    struct Parent {
        std::string dn;
        std::optional<Position> position;
    };
    using Level = std::vector<Parent>;

    Level begin(const TreeExtent& extent);
    std::uint64_t countChildren(const Level& level);
    void countHidden(const Level& level);
    Level addBelow(const Level& level);
    void readOutside(std::uint64_t limit);
    void readOutside(const std::string& dn);
    PicturedObject readObject(const std::string& dn) const;
    void readReferences(const ClassDef& moc, PicturedObject& object) const;

    ClientSession& mSession;
    unsigned long mTxHandle;
    TreePicture mPicture;
    bool mWantsValues = false;
};

}

#endif
