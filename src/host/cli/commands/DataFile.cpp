// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataFile.h"

#include "MeIdTranslator.h"
#include "cli/errors/CliErrors.h"
#include "cli/session/Session.h"
#include "model/DnForm.h"
#include "yang/instances/InstanceDataReader.h"

#include <filesystem>
#include <unordered_map>

namespace OrvHost {
namespace {

/// Objects by DN, with what several files say of one.
class ObjectList {
public:
    void add(DataObject&& object, const std::string& file) {
        const auto [place, isNew] = mByDn.try_emplace(object.dn, mObjects.size());
        if (isNew) {
            mObjects.push_back(std::move(object));
            return;
        }
        DataObject& known = mObjects[place->second];
        if (known.isBare) {
            known = std::move(object);
        } else if (!object.isBare) {
            mProblems.push_back(
                {{file, 0}, object.dn + ": the attributes of this object are given before"});
        }
    }

    std::vector<DataObject> take() {
        if (!mProblems.empty()) {
            throw InstanceDataError(std::move(mProblems));
        }
        return std::move(mObjects);
    }

private:
    std::vector<DataObject> mObjects;
    std::unordered_map<std::string, std::size_t> mByDn;
    std::vector<Problem> mProblems;
};

}

namespace {

/// A pipe whose other end nobody has would stop the prompt for ever, and some devices have no end.
/// What this process has open already is another matter: what the shell gave it.
void refuseEndless(const std::string& file) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    const bool isOpen = file == "/dev/stdin" || file.rfind("/dev/fd/", 0) == 0;
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
        !std::filesystem::is_directory(status) && !isOpen) {
        throw AnswerError(file + ": is a pipe, a socket or a device; a file or a directory with "
                                 "instance data was expected");
    }
}

}

DataFile readDataFile(Session& session, const std::string& file) {
    if (session.isServed()) {
        throw AnswerError(file + ": a server's shell reads no files");
    }
    refuseEndless(file);
    InstanceDataReader reader(requireSchema(session));
    reader.nameRoot(Orv::MeIdTranslator::instance()->identity());
    ObjectList objects;
    reader.read({file}, [&](DataObject&& object, const std::string& from) {
        session.cancellation().throwIfCancelled();
        shortenReferences(session.model(), object.attributes);
        objects.add(std::move(object), from);
    });
    DataFile data;
    data.objects = objects.take();
    for (const Problem& note : reader.notes()) {
        data.notes.push_back(toText(note));
    }
    return data;
}

std::shared_ptr<const YangSchema> requireSchema(const Session& session) {
    if (session.schema() == nullptr) {
        throw AnswerError("there is no model; files of instance data need one");
    }
    return session.schema();
}

}
