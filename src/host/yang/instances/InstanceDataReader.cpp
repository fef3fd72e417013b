// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceDataReader.h"

#include "base/RootObject.h"
#include "base/TextFile.h"
#include "base/TextScanner.h"
#include "yang/instances/DataProblem.h"
#include "yang/instances/EntryLines.h"
#include "yang/instances/Operations.h"
#include "yang/instances/ParsedData.h"
#include "yang/instances/PlainJsonReader.h"
#include "yang/instances/RootRenaming.h"
#include "yang/instances/TreeReader.h"
#include "yang/schema/ModelNotes.h"
#include "yang/source/SourceLocator.h"
#include "yang/source/Utf8.h"
#include "yang/source/YangContext.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

namespace OrvHost {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kObjectsPerReport = 4096;

[[noreturn]] void refuse(const std::string& file, int line, std::string text) {
    throw InstanceDataError({{{file, line}, std::move(text)}});
}

bool isDataFile(const fs::path& file) {
    return file.extension() == ".json" || file.extension() == ".xml";
}

std::vector<fs::path> filesIn(const fs::path& directory) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (entry.is_regular_file() && isDataFile(entry.path())) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        refuse(directory.string(), 0, "the directory holds no .json or .xml file");
    }
    return files;
}

std::vector<fs::path> expand(const std::vector<fs::path>& paths) {
    std::vector<fs::path> files;
    for (const fs::path& path : paths) {
        std::error_code error;
        if (fs::is_directory(path, error)) {
            const std::vector<fs::path> inside = filesIn(path);
            files.insert(files.end(), inside.begin(), inside.end());
        } else {
            files.push_back(path);
        }
    }
    return files;
}

// One message instead of one for each object.
void refuseRepeated(const std::vector<fs::path>& files) {
    std::set<fs::path> known;
    for (const fs::path& file : files) {
        std::error_code error;
        const fs::path whole = fs::canonical(file, error);
        if (!error && !known.insert(whole).second) {
            refuse(file.string(), 0,
                   "is to be read twice: it is named twice, or its directory is named, too");
        }
    }
}

std::uint64_t sizeOf(const fs::path& file) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    return error ? 0 : size; // a problem with the file is reported when it is read
}

std::string contentsOf(const fs::path& file) {
    TextFile read = readTextFile(file);
    if (!read.isRead()) {
        refuse(file.string(), 0, read.problem + "; a file with instance data was expected");
    }
    return std::move(read.text);
}

// The parser stops without an error at the end of a JSON document or, at a zero byte, at the end of
// the text. Text after that would be lost silently.
void refuseRest(const std::string& text, std::size_t parsed, const std::string& label) {
    const std::size_t rest = text.find_first_not_of(" \t\r\n", parsed);
    if (rest != std::string::npos) {
        const auto line = std::count(text.begin(), text.begin() + static_cast<long>(rest), '\n');
        refuse(label, static_cast<int>(line) + 1,
               "the data is complete before this line ends, but the file goes on");
    }
}

// The parser accepts some malformed characters, for example in a CDATA section, and the value could
// then neither be written nor shown.
void refuseMalformed(std::string_view text, const std::string& label) {
    int line = 1;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t plain = plainPrefix(text.substr(at));
        if (plain > 0) {
            at += plain;
            continue;
        }
        const std::size_t length = lengthOfCharacter(text.substr(at));
        if (length == 0) {
            refuse(label, line, "text in UTF-8 was expected, without control characters");
        }
        line += text[at] == '\n' ? 1 : 0;
        at += length;
    }
}

ParsedData parse(const std::string& text, LYD_FORMAT format, std::uint32_t options,
                 const YangContext& context, const std::string& label) {
    context.takeMessages(); // of other attempts, which would be taken for this one's
    const ParserInput input = parserInputOf(text);
    lyd_node* parsed = nullptr;
    // Parsing only: checks of whole trees take quadratic time for references, and would refuse the
    // bare parents of a slice.
    const LY_ERR code = lyd_parse_data(context.get(), nullptr, input.get(), format,
                                       options | LYD_PARSE_ONLY, 0, &parsed);
    ParsedData tree(parsed);
    if (code != LY_SUCCESS) {
        throw InstanceDataError({takeDataProblem(context, label, text)});
    }
    refuseRest(text, ly_in_parsed(input.get()), label);
    return tree;
}

/// What the model has in the place of a node that the parser kept as it was written, or null.
const lysc_node* schemaOf(const lyd_node* opaque, const YangContext& context) {
    const auto& written = *reinterpret_cast<const lyd_node_opaq*>(opaque);
    const lyd_node* parent = lyd_parent(opaque);
    const lys_module* module = nullptr;
    if (written.name.module_name != nullptr) {
        module = written.format == LY_VALUE_XML
                     ? ly_ctx_get_module_implemented_ns(context.get(), written.name.module_ns)
                     : ly_ctx_get_module_implemented(context.get(), written.name.module_name);
    } else if (parent != nullptr) {
        module = lyd_owner_module(parent);
    }
    if (module == nullptr) {
        return nullptr;
    }
    return lys_find_child(parent == nullptr ? nullptr : parent->schema, module, written.name.name,
                          0, 0, 0);
}

std::string nameOf(const lyd_node_opaq& node) {
    const std::string prefix = node.name.prefix == nullptr ? "" : node.name.prefix;
    return (prefix.empty() ? "" : prefix + ":") + node.name.name;
}

/// The nodes that the parser kept as they were written, in their order.
void findOpaque(lyd_node* first, std::vector<lyd_node*>& found) {
    for (lyd_node* node = first; node != nullptr; node = node->next) {
        if (node->schema == nullptr) {
            found.push_back(node);
        } else {
            findOpaque(lyd_child(node), found);
        }
    }
}

/// Parses without the nodes that no module knows, and notes them. The parser has an option of its
/// own to leave them out, which in JSON leaves out known data after them, too. So it keeps all that
/// it cannot place, and what is known among that is refused: its value or its form is wrong.
ParsedData parseKnown(const std::string& text, LYD_FORMAT format, const YangSchema& schema,
                      const std::string& label, ModelNotes& notes) {
    const YangContext& context = schema.context();
    ParsedData tree = parse(text, format, LYD_PARSE_OPAQ, context, label);
    std::vector<lyd_node*> opaque;
    findOpaque(tree.get(), opaque);
    const EntryLines lines =
        opaque.empty() ? EntryLines() : EntryLines(text, format, schema, tree.get());
    std::vector<Problem> problems;
    for (lyd_node* node : opaque) {
        const auto& written = *reinterpret_cast<const lyd_node_opaq*>(node);
        const lyd_node* parent = lyd_parent(node);
        const std::string where = parent == nullptr ? "" : dataPathOf(parent);
        if (const lysc_node* known = schemaOf(node, context)) {
            const std::string value = written.value == nullptr ? "" : written.value;
            std::string what = (known->nodetype & LYD_NODE_TERM) != 0
                                   ? "the value \"" + value + "\" does not fit its type"
                                   : "an entry without its keys, or in a form that the model does "
                                     "not give it";
            what.append(", at ").append(where).append("/").append(nameOf(written));
            problems.push_back({{label, lines.lineOf(node)}, std::move(what)});
            continue;
        }
        const std::string place = parent == nullptr ? "" : pathOf(parent->schema) + "/";
        notes.count("no loaded module knows " + place + nameOf(written) + ": it is skipped",
                    {label, 0}, where.empty() ? "the top" : where);
        removeFrom(tree, node);
    }
    if (!problems.empty()) {
        throw InstanceDataError(std::move(problems));
    }
    return tree;
}

/// The library's message for an operation in data.
bool isAboutAnOperation(const Problem& problem) {
    TextScanner text(problem.text);
    if (!text.take("Unexpected ")) {
        return false;
    }
    const auto what = text.before(" ");
    return what && !what->empty() && text.take("element ");
}

/// The lines of a text that was made from a file are not those of the file.
template <class Parse>
ParsedData withoutLines(const Parse& parseText) {
    try {
        return parseText();
    } catch (const InstanceDataError& error) {
        std::vector<Problem> problems = error.problems();
        for (Problem& problem : problems) {
            problem.source.line = 0;
        }
        throw InstanceDataError(std::move(problems));
    }
}

/// The tree of a text. Actions and notifications in it are left out with a note.
ParsedData parseByLibrary(const std::string& text, LYD_FORMAT format, const YangSchema& schema,
                          const std::string& label, bool skipsUnknown, ModelNotes& notes) {
    const YangContext& context = schema.context();
    const auto parseData = [&](const std::string& data) {
        return skipsUnknown ? parseKnown(data, format, schema, label, notes)
                            : parse(data, format, LYD_PARSE_STRICT, context, label);
    };
    try {
        return parseData(text);
    } catch (const InstanceDataError& error) {
        const auto rest = isAboutAnOperation(error.problems().front())
                              ? withoutOperations(text, format, context, label, notes)
                              : std::nullopt;
        if (!rest) {
            throw;
        }
        return withoutLines([&] { return parseData(*rest); });
    }
}

LYD_FORMAT formatOf(const std::string& text, const std::string& label) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && text[first] == '{') {
        return LYD_JSON;
    }
    if (first != std::string::npos && text[first] == '<') {
        return LYD_XML;
    }
    refuse(label, 1, "JSON that begins with \"{\" or XML that begins with \"<\" was expected");
}

}

InstanceDataReader::InstanceDataReader(std::shared_ptr<const YangSchema> schema)
    : mSchema(std::move(schema)), mPlainReader(std::make_unique<PlainJsonReader>(*mSchema)) {}

InstanceDataReader::~InstanceDataReader() = default;

InstanceDataReader& InstanceDataReader::onProgress(Progress progress) {
    mProgress = std::move(progress);
    return *this;
}

InstanceDataReader& InstanceDataReader::skipUnknown() {
    mSkipsUnknown = true;
    return *this;
}

InstanceDataReader& InstanceDataReader::nameRoot(std::string name) {
    mRootName = std::move(name);
    return *this;
}

std::size_t InstanceDataReader::read(const std::vector<fs::path>& paths, const Sink& sink) {
    const std::vector<fs::path> files = expand(paths);
    refuseRepeated(files);
    mState = {};
    mNotes.clear();
    mRootInFiles.clear();
    mState.filesInAll = files.size();
    for (const fs::path& file : files) {
        mState.bytesInAll += sizeOf(file);
    }
    std::vector<Problem> problems;
    for (const fs::path& file : files) {
        try {
            readFile(file, problems.empty() ? &sink : nullptr);
        } catch (const InstanceDataError& error) {
            problems.insert(problems.end(), error.problems().begin(), error.problems().end());
        }
    }
    if (!problems.empty()) {
        throw InstanceDataError(std::move(problems));
    }
    return mState.objects;
}

std::size_t InstanceDataReader::readText(const std::string& text, const std::string& label,
                                         const Sink& sink) {
    mState = {};
    mNotes.clear();
    mRootInFiles.clear();
    mState.filesInAll = 1;
    mState.bytesInAll = text.size();
    parseAndDeliver(text, label, &sink);
    return mState.objects;
}

void InstanceDataReader::readFile(const fs::path& file, const Sink* sink) {
    parseAndDeliver(contentsOf(file), file.string(), sink);
    ++mState.filesDone;
    mState.bytesDone += sizeOf(file);
    report(true);
}

/// Without a sink the data is only checked.
void InstanceDataReader::parseAndDeliver(const std::string& text, const std::string& label,
                                         const Sink* sink) {
    const LYD_FORMAT format = formatOf(text, label);
    refuseMalformed(text, label);
    ModelNotes notes;
    auto plain = format == LYD_JSON ? mPlainReader->read(text) : std::nullopt;
    const ParsedData tree =
        plain ? nullptr : parseByLibrary(text, format, *mSchema, label, mSkipsUnknown, notes);
    const auto readObjects = [&](const TreeReader::Sink& take) {
        if (plain) {
            std::for_each(plain->begin(), plain->end(),
                          [&](DataObject& object) { take(std::move(object)); });
        } else {
            TreeReader(*mSchema, label, notes, EntryLines(text, format, *mSchema, tree.get()))
                .read(tree.get(), take);
        }
    };
    std::string root;
    if (mRootName) {
        root = onlyRootOf(plain ? rootNamesIn(*plain) : rootNamesIn(tree.get(), *mSchema), label);
    }
    noteRoot(root, label);
    const RootRenaming renaming(root, mRootName.value_or(root));
    std::vector<Problem> problems;
    readObjects([&](DataObject&& object) {
        for (std::string& problem : renaming.rename(object)) {
            problems.push_back({{label, object.line}, std::move(problem)});
        }
        if (sink != nullptr) {
            (*sink)(std::move(object), label);
            ++mState.objects;
            report(false);
        }
    });
    if (!problems.empty()) {
        throw InstanceDataError(std::move(problems));
    }
    std::vector<Problem> more = std::move(notes).take();
    mNotes.insert(mNotes.end(), more.begin(), more.end());
}

/// Two networks must not become one only because each of them calls its root as it likes.
void InstanceDataReader::noteRoot(const std::string& name, const std::string& label) {
    if (name.empty() || name == kRootName) {
        return;
    }
    if (mRootInFiles.empty()) {
        mRootInFiles = name;
        mRootFile = label;
    } else if (mRootInFiles != name) {
        refuse(label, 0,
               "the element at the root is called " + name + " here, but " + mRootInFiles + " in " +
                   mRootFile + "; one name was expected, or " + kRootName);
    }
}

void InstanceDataReader::report(bool always) {
    if (mProgress && (always || mState.objects % kObjectsPerReport == 0)) {
        mProgress(mState);
    }
}

}
