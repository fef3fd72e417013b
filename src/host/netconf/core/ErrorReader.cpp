// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ErrorReader.h"

#include "OrvReturn.h"
#include "base/HostReturn.h"
#include "client/ClientSession.h"
#include "client/ErrorExplainer.h"
#include "client/edits/EditPlan.h"
#include "client/edits/EditProblem.h"
#include "netconf/wire/XmlText.h"

#include <new>

namespace OrvHost {

namespace {

std::string tagOf(EditProblem::Kind kind) {
    switch (kind) {
    case EditProblem::Kind::NoSuchClass:
    case EditProblem::Kind::NoSuchAttribute:
        return "unknown-element";
    case EditProblem::Kind::NoParent:
    case EditProblem::Kind::NotThere:
        return "data-missing";
    case EditProblem::Kind::AlreadyThere:
        return "data-exists";
    case EditProblem::Kind::WrongValue:
    case EditProblem::Kind::DeletedTarget:
        return "invalid-value";
    case EditProblem::Kind::OutsideEdit:
    case EditProblem::Kind::Contradiction:
        return "operation-failed";
    }
    return "operation-failed";
}

std::string tagOf(OrvReturnT code, bool isAboutAttribute) {
    switch (code) {
    case OrvNotExist:
        return isAboutAttribute ? "unknown-element" : "data-missing";
    case OrvAlreadyExist:
        return "data-exists";
    case OrvInvalidArgument:
        return "invalid-value";
    case OrvHostWriteConflict:
        return "in-use";
    case OrvHostNotWritable:
        return "operation-not-supported";
    default:
        return "operation-failed";
    }
}

/// Empty if it is not about a number.
std::string appTagOf(const Violation& violation) {
    if (!violation.count) {
        return "";
    }
    return *violation.count == CountProblem::TooFew ? "too-few-elements" : "too-many-elements";
}

std::vector<std::string> foundTexts(const Violation& violation) {
    if (const auto* text = std::get_if<std::string>(&violation.found)) {
        return {*text};
    }
    std::vector<std::string> texts;
    const auto* read = std::get_if<ReadValue>(&violation.found);
    const auto values = read != nullptr ? toAttributeValue(*read, ValueKind::String) : std::nullopt;
    for (std::size_t at = 0; values && at < values->values.size(); ++at) {
        texts.push_back(toText(values->values[at]));
    }
    return texts;
}

/// Object, attribute, what was found and what is allowed, for programs.
std::string infoOf(const Violation& violation) {
    std::string info = std::string("<violation xmlns=\"") + kViolationNamespace + "\">";
    if (violation.object) {
        info += xmlElement("object", *violation.object);
    }
    if (violation.attribute) {
        info += xmlElement("attribute", *violation.attribute);
    }
    for (const std::string& found : foundTexts(violation)) {
        info += xmlElement("found", found);
    }
    if (violation.allowed) {
        info += xmlElement("allowed", *violation.allowed);
    }
    return info + "</violation>";
}

class Reader {
public:
    Reader(const YangSchema& schema, ClientSession& session) : mSchema(schema), mSession(session) {}

    std::vector<RpcError> read(const EditRefusedError& refusal) const {
        std::vector<RpcError> errors;
        for (const EditProblem& problem : refusal.problems()) {
            RpcError error;
            error.tag = tagOf(problem.kind);
            error.path = instancePathOf(mSchema, problem.dn, problem.attribute);
            error.message = problem.text;
            if (error.tag == "unknown-element") {
                error.info = errorInfo("bad-element",
                                       problem.attribute.empty() ? problem.dn : problem.attribute);
            }
            errors.push_back(std::move(error));
        }
        return errors;
    }

    std::vector<RpcError> read(const RefusalError& refusal) const {
        std::vector<RpcError> errors;
        for (const Violation& violation : refusal.violations()) {
            errors.push_back(read(violation));
        }
        if (errors.empty()) {
            RpcError error;
            error.tag = tagOf(refusal.outcome().code, false);
            error.message = refusal.outcome().reason;
            errors.push_back(std::move(error));
        }
        return errors;
    }

    std::vector<RpcError> read(const OperationError& refused, const std::string& dn) {
        const OperationSubject& subject = refused.subject();
        const std::string attribute =
            subject.attributes.size() == 1 ? subject.attributes.front() : std::string();
        RpcError error;
        error.tag = tagOf(refused.code(), !attribute.empty());
        error.path = instancePathOf(mSchema, dn, attribute + subject.action);
        const std::string explained = explanation(refused);
        error.message = codeText(refused.code()) + (explained.empty() ? "" : ": ") + explained;
        for (const ThreadContext::Message& message : refused.messages()) {
            const std::string text = ErrorExplainer(mSession).inClientsWords(message.text);
            if (text != explained) {
                error.message += "\n" + text;
            }
        }
        if (error.tag == "unknown-element") {
            error.info = errorInfo("bad-element", attribute);
        }
        return {error};
    }

private:
    RpcError read(const Violation& violation) const {
        static const std::string conflict = "the transaction met a conflict";
        RpcError error;
        const bool isConflict = violation.message.compare(0, conflict.size(), conflict) == 0;
        error.tag = isConflict ? "in-use" : "operation-failed";
        error.appTag = appTagOf(violation);
        const std::string object = violation.object.value_or("");
        if (object != "/") {
            error.path = instancePathOf(mSchema, object, violation.attribute.value_or(""));
        }
        error.message = violation.message;
        error.info = infoOf(violation);
        return error;
    }

    // The explanation calls the component again; that must not hide the first error.
    std::string explanation(const OperationError& refused) {
        try {
            return ErrorExplainer(mSession).explain(refused);
        } catch (const std::exception&) {
            return "";
        }
    }

    const YangSchema& mSchema;
    ClientSession& mSession;
};

RpcError plain(const std::string& tag, const std::string& message) {
    RpcError error;
    error.tag = tag;
    error.message = message;
    return error;
}

}

std::vector<RpcError> errorsOf(const std::exception_ptr& error, const YangSchema& schema,
                               ClientSession& session) {
    Reader reader(schema, session);
    try {
        std::rethrow_exception(error);
    } catch (const RpcErrors& failure) {
        return failure.errors();
    } catch (const EditRefusedError& failure) {
        return reader.read(failure);
    } catch (const RefusalError& failure) {
        return reader.read(failure);
    } catch (const PlanRefusedError& failure) {
        return reader.read(failure, failure.call().dn);
    } catch (const OperationError& failure) {
        return reader.read(failure, failure.subject().dn);
    } catch (const UnlistedTopError& failure) {
        return {plain("operation-not-supported",
                      std::string(failure.what()) + ", in a filter or an edit by its keys")};
    } catch (const CancelledError&) {
        return {plain("operation-failed", "the session or the server is ending")};
    } catch (const std::bad_alloc&) {
        return {plain("resource-denied", "there is not enough memory")};
    } catch (const std::exception& failure) {
        return {plain("operation-failed", failure.what())};
    }
}

}
