// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "base/AtomicFile.h"
#include "base/Counted.h"
#include "cli/errors/CliErrors.h"
#include "cli/errors/UnknownClass.h"
#include "cli/graph/ClassGraph.h"
#include "cli/graph/Graphviz.h"
#include "cli/graph/ObjectGraph.h"
#include "cli/graph/ObjectPage.h"
#include "cli/graph/PictureReader.h"
#include "cli/input/WordSplitter.h"
#include "cli/session/Session.h"
#include "cli/session/TerminationGuard.h"
#include "client/OfferedModel.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>

namespace OrvHost {

namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
// What is read for a picture that can be folded, or a page, and what can be read easily.
constexpr std::uint64_t kObjects = 100000;
constexpr std::uint64_t kClasses = 300;
// How many objects Graphviz lays out in good time if none are folded.
constexpr std::uint64_t kUnfolded = 300;
constexpr std::uint64_t kBoxes = 100;
constexpr std::uint64_t kSeconds = 60;
constexpr std::uint64_t kMostSeconds = std::uint64_t{24} * 60 * 60;

struct GraphOptions {
    bool wantsClasses = false;
    bool wantsDot = false;
    bool wantsPage = false;
    bool wantsAllBoxes = false;
    std::optional<std::string> file;
    std::uint64_t depth = kNoLimit;
    std::uint64_t limit = 0; ///< of objects or classes
    std::chrono::seconds timeout{};
    std::string from; ///< DN or class; empty: the top level
};

std::uint64_t usualLimit(const GraphOptions& options) {
    if (options.wantsClasses) {
        return kClasses;
    }
    return options.wantsAllBoxes ? kUnfolded : kObjects;
}

std::chrono::seconds layoutTime(std::uint64_t seconds) {
    if (seconds == 0) {
        throw UsageError("--layout-time needs at least 1 second");
    }
    return std::chrono::seconds(std::min(seconds, kMostSeconds));
}

const char* formOf(const GraphOptions& options) {
    return options.wantsPage ? "html" : (options.wantsDot ? "dot" : "svg");
}

/// What the ending of a file's name promises; empty: a picture that is not made here. Nothing: the
/// ending means nothing.
std::optional<std::string> formPromisedBy(const std::string& file) {
    static const std::map<std::string, std::string> forms{
        {".png", ""},    {".jpg", ""},    {".jpeg", ""},     {".gif", ""},
        {".pdf", ""},    {".ps", ""},     {".html", "html"}, {".htm", "html"},
        {".svg", "svg"}, {".dot", "dot"}, {".gv", "dot"}};
    const auto promised = forms.find(std::filesystem::path(file).extension());
    return promised != forms.end() ? std::optional(promised->second) : std::nullopt;
}

/// A name that promises another kind of picture is rather a mistake.
void requireFittingName(const GraphOptions& options) {
    static const std::map<std::string, std::string> kinds{
        {"html", "HTML"}, {"dot", "DOT"}, {"svg", "SVG"}};
    const std::string form = formOf(options);
    const auto promised = formPromisedBy(options.file.value_or(""));
    if (promised && *promised != form) {
        throw UsageError(*options.file + ": the picture is " + kinds.at(form) +
                         "; a name ending in ." + form + " was expected");
    }
}

/// A file's name where a DN or a class is expected.
void refuseFile(const std::string& word) {
    if (word.find('=') == std::string::npos && formPromisedBy(word)) {
        throw UsageError("'" + word + "' is a file's name; -o " + word + " was expected");
    }
}

GraphOptions parse(Words& words, const Model& model) {
    GraphOptions options;
    options.wantsClasses = words.takeFlag("--classes");
    options.wantsDot = words.takeFlag("--dot");
    options.wantsPage = words.takeFlag("--html");
    options.file = words.takeText("-o");
    options.depth = words.takeNumber("--depth").value_or(kNoLimit);
    options.wantsAllBoxes = words.takeFlag("--unfold");
    options.limit = words.takeNumber("--limit").value_or(usualLimit(options));
    options.timeout = layoutTime(words.takeNumber("--layout-time").value_or(kSeconds));
    refuseFile(words.peek());
    options.from =
        options.wantsClasses ? words.takeOptional().value_or("") : words.takeDnOrHere(model);
    words.end();
    if (options.wantsPage && (options.wantsClasses || options.wantsDot)) {
        throw UsageError("--html shows objects; it cannot be combined with --classes or --dot");
    }
    if (options.wantsAllBoxes && (options.wantsClasses || options.wantsPage)) {
        throw UsageError("--unfold is for pictures of objects; it cannot be combined with "
                         "--classes or --html");
    }
    return options;
}

/// What was drawn, and the facts that are printed about it.
// NOLINTNEXTLINE(bugprone-exception-escape): moving JSON calls functions that cannot throw here
struct Drawing {
    std::string text; ///< for Graphviz, or the page
    std::string summary;
    std::string note; ///< what is not seen in it; empty: nothing
    std::vector<InstanceProblem> violations;
    JsonValue json;
};

GraphOffer offerFor(const GraphOptions& options, bool isServed) {
    const std::string dot = isServed ? " --dot" : "";
    const std::string from = options.from.empty() ? "" : " " + quoteForTyping(options.from);
    const std::string depth =
        options.depth == kNoLimit ? "" : " --depth " + std::to_string(options.depth);
    return {options.wantsAllBoxes ? 0 : kBoxes,
            "graph" + dot,
            "graph" + dot + " --unfold" + from + depth,
            kUnfolded,
            std::string("graph --html") + (isServed ? "" : " -o FILE.html") + from + depth,
            kObjects};
}

Drawing drawObjects(Session& session, const GraphOptions& options) {
    const TreePicture picture = session.read([&](unsigned long txHandle) {
        return PictureReader(session, txHandle)
            .read({options.from, options.depth, options.limit, options.wantsPage});
    });
    const std::vector<ClassDescription> classes = describeOfferedClasses(session.host());
    Drawing drawing;
    drawing.violations = violationsIn(session.model(), picture);
    session.cancellation().throwIfCancelled();
    const ReferenceLines lines(classes, picture, drawing.violations);
    session.cancellation().throwIfCancelled();
    drawing.json = {{"objects", picture.objects.size()},
                    {"references", lines.references()},
                    {"unread", lines.unread()}};
    if (picture.hiddenBelow > 0) {
        drawing.json["below"] = picture.hiddenBelow;
    }
    if (options.wantsPage) {
        drawing.text = objectPage(picture, lines, drawing.violations);
        drawing.summary = pictureSummary(picture, lines, drawing.violations);
    } else {
        const ObjectGraph graph(picture, lines, drawing.violations,
                                offerFor(options, session.isServed()));
        drawing.text = graph.dot();
        drawing.summary = graph.summary();
        drawing.note = graph.foldNote();
        drawing.json["folded"] = !drawing.note.empty();
    }
    session.cancellation().throwIfCancelled();
    drawing.json["violations"] = JsonValue::array();
    for (const InstanceProblem& problem : drawing.violations) {
        session.cancellation().throwIfCancelled();
        drawing.json["violations"].add({{"dn", problem.dn},
                                        {"attribute", problem.attribute},
                                        {"other", problem.otherDn},
                                        {"text", problem.text}});
    }
    return drawing;
}

void requireClass(const std::vector<ClassDescription>& classes, const std::string& name) {
    if (name.empty() || findDescription(classes, name) != nullptr) {
        return;
    }
    std::vector<std::string> names;
    names.reserve(classes.size());
    for (const ClassDescription& moc : classes) {
        names.push_back(moc.name);
    }
    throw unknownClass(name, names);
}

Drawing drawClasses(Session& session, const GraphOptions& options) {
    const std::vector<ClassDescription> classes = describeOfferedClasses(session.host());
    requireClass(classes, options.from);
    const ClassGraph graph(session.model(), classes, options.from, options.depth);
    if (graph.classes() > options.limit) {
        throw AnswerError("there are " + std::to_string(graph.classes()) + " classes, more than " +
                          std::to_string(options.limit) +
                          ". Draw less with --depth or from a class, or raise --limit");
    }
    return {graph.dot(),
            graph.summary(),
            {},
            {},
            {{"classes", graph.classes()}, {"associations", graph.associations()}}};
}

// The program that draws would go on after a signal that ends this one.
std::string render(Session& session, const std::string& dot, const GraphOptions& options) {
    const std::string advice =
        options.wantsClasses
            ? "Draw less with --depth or from a class, or raise --layout-time"
            : "Draw less with --depth or from another DN, or raise --layout-time; --html makes a "
              "page for many objects";
    const TerminationGuard guard(session.cancellation());
    return renderSvg(dot, options.timeout, advice, session.cancellation());
}

void print(Session& session, const GraphOptions& options, const Drawing& drawing,
           const std::string& text) {
    if (options.file) {
        writeWholeFile(*options.file, text);
    }
    if (session.wantsJson()) {
        JsonValue document{{"command", "graph"}};
        document.update(drawing.json);
        if (!drawing.note.empty()) {
            document["note"] = drawing.note;
        }
        document[options.file ? "file" : formOf(options)] = options.file.value_or(text);
        session.print(document);
    } else if (!options.file) {
        session.out() << text;
        if (!drawing.note.empty()) {
            // The output is the picture.
            session.errors() << "note: " << drawing.note << '\n';
        }
    } else {
        session.out() << *options.file << ": " << drawing.summary << '\n';
        for (const InstanceProblem& problem : drawing.violations) {
            session.out() << "  " << problem.text << '\n';
        }
        if (!drawing.note.empty()) {
            session.out() << "note: " << drawing.note << '\n';
        }
    }
}

}

void runGraph(Session& session, Words words) {
    const GraphOptions options = parse(words, session.model());
    requireFittingName(options);
    const bool isDone = options.wantsPage || options.wantsDot;
    if (session.isServed() && (options.file || !isDone)) {
        throw AnswerError("a server's shell writes no files and does not call Graphviz; 'graph "
                          "--dot' and 'graph --html' print texts");
    }
    const Drawing drawing =
        options.wantsClasses ? drawClasses(session, options) : drawObjects(session, options);
    print(session, options, drawing,
          isDone ? drawing.text : render(session, drawing.text, options));
}

}
