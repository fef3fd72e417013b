// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Failure.h"

#include "base/Counted.h"
#include "base/HostReturn.h"
#include "cli/output/AlignedText.h"
#include "client/ClientSession.h"
#include "client/ErrorExplainer.h"
#include "client/RefusalError.h"
#include "client/RefusedWrite.h"
#include "client/edits/EditPlan.h"

#include <algorithm>

namespace OrvHost {

namespace {

constexpr std::size_t kMostValues = 10;
constexpr std::size_t kMostColumns = 300;

constexpr OrvReturnT kCodes[] = {OrvOk,
                                 OrvNotActive,
                                 OrvFailure,
                                 OrvNotExist,
                                 OrvAlreadyExist,
                                 OrvInvalidArgument,
                                 OrvValidationFailed,
                                 OrvHostWriteConflict,
                                 OrvHostNotWritable,
                                 OrvHostNotContained,
                                 OrvHostWrongState,
                                 OrvHostStoreUnavailable,
                                 OrvHostOutcomeUnknown};

// The router's own explanations contain internal names; they are shown only if there is no better
// one.
bool isWanted(const ThreadContext::Message& message, const std::string& explanation) {
    return message.kind != ThreadContext::Explanation || explanation.empty();
}

std::vector<std::string> textsOf(const std::vector<ThreadContext::Message>& messages) {
    std::vector<std::string> texts;
    texts.reserve(messages.size());
    for (const ThreadContext::Message& message : messages) {
        texts.push_back(message.text);
    }
    return texts;
}

Failure plain(ExitStatus status, const std::string& text) {
    return {status, std::nullopt, text, {}, {{"text", text}}};
}

std::string withUsage(const std::string& text, const std::string& usage) {
    const bool isSentence = !text.empty() && (text.back() == '.' || text.back() == '?');
    return text + (isSentence ? "" : ".") + " Usage: " + usage;
}

JsonValue foundJson(const Violation& violation) {
    const auto* values = std::get_if<ReadValue>(&violation.found);
    return values != nullptr ? toJson(*values) : JsonValue(std::get<std::string>(violation.found));
}

/// For people: the beginning of a long text, and how long it is.
void shorten(JsonValue& value) {
    value.changeEach(shorten);
    if (!value.isText()) {
        return;
    }
    const auto text = value.get<std::string>();
    if (shownColumns(text) <= kMostColumns) {
        return;
    }
    value = beginningOf(text, kMostColumns);
}

/// For people: the first of many values, and how many more there are.
JsonValue shortened(JsonValue details) {
    if (details.find("found") == nullptr) {
        return details;
    }
    JsonValue& found = details["found"];
    shorten(found);
    const std::size_t all = found.elements().size();
    if (all > kMostValues) {
        const auto first = found.elements().begin();
        JsonValue few = JsonValue::array();
        std::for_each(first, first + kMostValues, [&](const JsonValue& one) { few.add(one); });
        few.add("... and " + std::to_string(all - kMostValues) + " more");
        found = std::move(few);
    }
    return details;
}

JsonValue detailsOf(const Violation& violation) {
    JsonValue details = JsonValue::object();
    if (violation.object) {
        details["object"] = *violation.object;
    }
    if (violation.attribute) {
        details["attribute"] = *violation.attribute;
    }
    if (!std::holds_alternative<std::monostate>(violation.found)) {
        details["found"] = foundJson(violation);
    }
    if (violation.allowed) {
        details["allowed"] = *violation.allowed;
    }
    return details;
}

const char* whatIsLeft(OrvReturnT commitCode) {
    return commitCode == OrvHostOutcomeUnknown
               ? "; it has ended, and whether it is committed is not known"
               : "; it is aborted, nothing of it is left";
}

bool isCommit(const RefusalError& refusal) {
    return refusal.operation() == RefusalError::Operation::Commit;
}

std::string toText(const RefusalError& refusal) {
    std::string text = refusal.summary();
    for (const Violation& violation : refusal.violations()) {
        text +=
            "\n  host: " + violation.message + "\n" + layOut(shortened(detailsOf(violation)), 4);
        text.erase(text.find_last_not_of('\n') + 1);
    }
    return text + "\n  " + refusal.outcome().reason +
           (isCommit(refusal) ? whatIsLeft(refusal.outcome().code) : "");
}

Failure read(const RefusalError& refusal) {
    Failure failure;
    failure.code = refusal.outcome().code;
    failure.text = toText(refusal);
    failure.messages = textsOf(refusal.outcome().messages);
    JsonValue violations = JsonValue::array();
    for (const Violation& violation : refusal.violations()) {
        JsonValue one{{"message", violation.message}};
        one.update(detailsOf(violation));
        violations.add(one);
    }
    failure.document = {{"operation", isCommit(refusal) ? "commit" : "validate"},
                        {"transaction", refusal.transaction()},
                        {"code", *failure.code},
                        {"name", codeName(*failure.code)},
                        {"text", refusal.outcome().reason},
                        {"messages", failure.messages},
                        {"violations", violations}};
    return failure;
}

}

std::string codeName(OrvReturnT code) {
    const std::string text = returnText(code);
    return text.substr(0, text.find(':'));
}

std::optional<OrvReturnT> codeOfName(const std::string& name) {
    for (const OrvReturnT code : kCodes) {
        if (codeName(code) == name) {
            return code;
        }
    }
    return std::nullopt;
}

Failure FailureReader::read(const std::string& usage, const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const OperationError& failure) {
        return read(failure);
    } catch (const RefusalError& failure) {
        return OrvHost::read(failure);
    } catch (const PlanCancelledError& cancelled) {
        return plain(ExitCommandError, whatStays(cancelled));
    } catch (const RequestError& failure) {
        return plain(ExitUsage, usage.empty() ? failure.what() : withUsage(failure.what(), usage));
    } catch (const std::exception& failure) {
        return plain(ExitCommandError, failure.what());
    }
}

Failure FailureReader::read(const OperationError& error) {
    const std::string explanation = explain(error);
    Failure failure;
    failure.code = error.code();
    failure.messages = textsOf(error.messages());
    failure.text = toText(error.subject()) + ": " + codeText(error.code());
    failure.text += explanation.empty() ? "" : "\n  " + explanation;
    for (const ThreadContext::Message& message : error.messages()) {
        failure.text += isWanted(message, explanation) ? "\n  host: " + message.text : "";
    }
    failure.document = {{"operation", error.subject().operation},
                        {"dn", error.subject().dn},
                        {"code", error.code()},
                        {"name", codeName(error.code())},
                        {"text", explanation},
                        {"messages", failure.messages}};
    const std::vector<std::string> remains = explainWhatStays(mSession, error);
    for (const std::string& line : remains) {
        failure.text += "\n  " + line;
    }
    if (!remains.empty()) {
        failure.document["aftermath"] = remains;
    }
    return failure;
}

std::string FailureReader::whatStays(const PlanCancelledError& cancelled) {
    const std::size_t done = cancelled.done();
    return mSession.transactions().current() == nullptr
               ? std::string(cancelled.what()) + "; nothing is changed"
               : cancelled.what() + ("; " + counted(done, "change")) +
                     (done == 1 ? " stays in the transaction" : " stay in the transaction");
}

// The explanation calls the component again; if that fails too, it must not hide the first error.
std::string FailureReader::explain(const OperationError& error) {
    try {
        return ErrorExplainer(mSession).explain(error);
    } catch (const std::exception&) {
        return {};
    }
}

std::string beginningOf(const std::string& text, std::size_t most) {
    if (text.size() <= most) {
        return text;
    }
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U) {
        --end; // no character is cut
    }
    return text.substr(0, end) + "... (" + std::to_string(text.size()) + " bytes)";
}

}
