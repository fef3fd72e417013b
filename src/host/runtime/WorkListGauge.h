// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_WORKLISTGAUGE_H
#define ORV_HOST_RUNTIME_WORKLISTGAUGE_H

#include "Host.h"
#include "base/OnlyOne.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// Computes how large the work list of the component libext_cm is, by what passes between the
/// component and the router.
///
/// That list has an entry for each reference attribute that was written in a class with
/// bidirectional associations, by a client or as a back-pointer, once in each transaction. The
/// component removes none before it ends. It is the only part of it that grows with the number of
/// transactions, so who watches the memory of a process must know its size. A back-pointer that the
/// router refuses is counted here but is not in the component's list, which is rare. What this
/// object lacks memory to count is missing here.
///
/// Threads: constructor and destructor as for the host; any for the rest.
class WorkListGauge {
public:
    /// The bytes that a block of \p bytes takes in the heap.
    using CostOf = std::int64_t (*)(std::size_t bytes);

    struct Size {
        std::uint64_t entries = 0;
        std::int64_t bytes = 0;
    };

    /// Puts itself between \p host's router and the components: before these start, and before the
    /// first transaction. It must outlive them. \throws std::logic_error if there is one already
    explicit WorkListGauge(Host& host, CostOf cost = &costOfBlock);
    WorkListGauge(const WorkListGauge&) = delete;
    WorkListGauge& operator=(const WorkListGauge&) = delete;

    /// Of all transactions that have ended.
    Size size() const;

private:
    using Written = std::set<std::pair<std::string, std::string>>; ///< internal DN, attribute
    using Container = OrvMoAttributeValueContainer_3;
    using Named = OrvMoNamedAttributeValueContainer_3;

    static std::int64_t costOfBlock(std::size_t bytes);
    static OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     const Container* value);
    static OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                               const char* attrName, const char* attrValue, Named** attributes);
    static OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn, Named** attributes);
    static OrvReturnT finish(unsigned long txHandle);

    void note(unsigned long txHandle, const std::string& dn, const char* attribute,
              const Container& value);
    void note(unsigned long txHandle, const std::string& dn, Named** attributes);
    void end(unsigned long txHandle);
    std::int64_t costOf(const Written& written) const;
    std::int64_t costOf(const std::string& text) const;

    OnlyOne<WorkListGauge> mOnlyOne;
    const Model& mModel;
    const CostOf mCostOf;
    std::vector<bool> mTakesPart; ///< by class: it has bidirectional associations
    const OrvOamSpiManagedObject_3 mRouter3;
    const VekOamSpiManagedObject_3_1 mRouter3_1;
    OrvOamSpiTransactionalResource_2 mResource;

    mutable std::mutex mMutex; ///< guards all below
    std::map<unsigned long, Written> mOpen;
    Size mSize;
};

}

#endif
