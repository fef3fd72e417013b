// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SetCommand.h"

#include "cli/Assignments.h"
#include "cli/CliError.h"
#include "cli/Diagnosis.h"
#include "cli/NamedRecords.h"
#include "cli/Session.h"
#include "cli/WriteReport.h"

namespace OrvHost {

const CommandInfo& SetCommand::info() const {
    static const CommandInfo theInfo{
        "set",
        "DN ATTRIBUTE=VALUE...",
        "set attributes of an object",
        "A value is a text, a number, true, false or a DN, as the attribute's type asks; null "
        "takes\n"
        "the value away. Several values: the same attribute again, or a JSON list. A struct: a "
        "JSON\n"
        "object. JSON goes into single quotes. Several attributes can also be one JSON object:\n"
        "  set DN label=Harbour colour=red colour=white\n"
        "  set DN 'position={\"latitude\": 59.3}' '{\"label\": null, \"height\": 12}'\n"
        "Interface version 3_1 sets all or none, the others one after the other.\n",
        {WordKind::Dn, WordKind::Assignment},
        {}};
    return theInfo;
}

void SetCommand::run(Session& session, Words words) {
    const std::string dn = words.take("the DN");
    const ClassDef* moc = Diagnosis(session).classOf(dn);
    const std::vector<NamedValue> attributes = parseAssignments(
        words.takeRest(), [&](const std::string& name) { return definitionOf(moc, name); });
    if (attributes.empty()) {
        throw UsageError("ATTRIBUTE=VALUE is missing");
    }
    const bool isCommitted = session.write(
        [&](unsigned long txHandle) { session.client().set(txHandle, dn, attributes); });
    reportWrite(session, {{"command", "set"}, {"dn", dn}, {"attributes", namesOf(attributes)}},
                "set", isCommitted);
}

}
