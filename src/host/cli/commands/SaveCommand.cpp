// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "DataFile.h"
#include "base/AtomicFile.h"
#include "base/Counted.h"
#include "base/DnView.h"
#include "cli/errors/CliErrors.h"
#include "cli/session/Session.h"
#include "cli/session/TerminationGuard.h"
#include "client/DnResolver.h"
#include "client/SubtreeReader.h"
#include "yang/instances/InstanceDataStream.h"

#include <filesystem>

namespace OrvHost {

namespace {

struct SaveOptions {
    std::string file;
    std::string dn; ///< empty: all objects
    DataFormat format = DataFormat::Json;
    bool onlyConfig = false;
};

DataFormat formatNamed(const std::string& name) {
    if (name != "json" && name != "xml") {
        throw UsageError("--format is json or xml, not '" + name + "'");
    }
    return name == "xml" ? DataFormat::Xml : DataFormat::Json;
}

SaveOptions parse(Words& words, const Model& model) {
    SaveOptions options;
    const auto format = words.takeText("--format");
    options.onlyConfig = words.takeFlag("--config");
    options.file = words.take("the FILE");
    options.dn = words.takeDnOrTop(model);
    words.end();
    const bool isXml = std::filesystem::path(options.file).extension() == ".xml";
    options.format = format ? formatNamed(*format) : (isXml ? DataFormat::Xml : DataFormat::Json);
    return options;
}

/// Writes a subtree, with what is above it.
class Saver {
public:
    Saver(Session& session, const SaveOptions& options, AtomicFile& file)
        : mSession(session),
          mOptions(options),
          mFile(file),
          mStream(requireSchema(session), options.format, file.out()) {}

    /// Returns the number of objects, without those above the subtree.
    std::uint64_t save(unsigned long txHandle) {
        if (!mOptions.dn.empty()) {
            openAbove(DnView(mOptions.dn).parent());
        }
        SubtreeReader(mSession, txHandle)
            .read(
                mOptions.dn, [this](const ObjectState& object) { open(object); },
                [this] { mStream.close(); });
        for (std::size_t above = DnView(mOptions.dn).depth(); above > 1; --above) {
            mStream.close();
        }
        mStream.finish();
        return mObjects;
    }

private:
    void openAbove(DnView dn) {
        for (const DnStep step : dn.steps()) {
            mStream.open(step.className(), std::string(step.value()), {});
        }
    }

    void open(const ObjectState& object) {
        const DnStep step = DnView(object.dn).last();
        mStream.open(step.className(), std::string(step.value()),
                     valuesToSave(object, mOptions.onlyConfig));
        mFile.throwIfFailed();
        ++mObjects;
    }

    Session& mSession;
    const SaveOptions& mOptions;
    AtomicFile& mFile;
    InstanceDataStream mStream;
    std::uint64_t mObjects = 0;
};

}

void runSave(Session& session, Words words) {
    const SaveOptions options = parse(words, session.model());
    requireSchema(session);
    if (!options.dn.empty()) {
        session.requireObject(options.dn);
    }
    const TerminationGuard guard(session.cancellation());
    AtomicFile file(options.file);
    const std::uint64_t objects = session.read(
        [&](unsigned long txHandle) { return Saver(session, options, file).save(txHandle); });
    session.cancellation().throwIfCancelled();
    file.replace();
    if (session.wantsJson()) {
        session.print({{"command", "save"},
                       {"file", options.file},
                       {"format", options.format == DataFormat::Xml ? "xml" : "json"},
                       {"dn", options.dn},
                       {"objects", objects}});
    } else {
        session.out() << options.file << ": " << counted(objects, "object") << '\n';
    }
}

}
