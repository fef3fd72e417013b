// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleModel.h"

namespace OrvHost {

namespace {

ClassDraft cellClass() {
    using Attribute = AttributeDraft;
    ClassDraft cell("Cell");
    cell.key("id")
        .attribute(Attribute::boolean("locked").mandatory().defaultsTo(Value(false)))
        .attribute(Attribute::integer("offset"))
        .attribute(Attribute::unsignedInteger("load").readOnly())
        .attribute(Attribute::decimal("gain"))
        .attribute(Attribute::enumeration("state", {"idle", "busy"}))
        .attribute(Attribute::text("labels").many())
        .attribute(Attribute::structure(
            "place", {Attribute::text("town").mandatory(), Attribute::reference("node", {"Node"})}))
        .attribute(Attribute::reference("antennas").multiplicity(0, 4))
        .attribute(Attribute::reference("next"))
        .attribute(Attribute::reference("previous"))
        .attribute(Attribute::reference("friends").many())
        .attribute(Attribute::reference("source").many())
        .attribute(Attribute::reference("any"));
    cell.action(ActionDraft("restart")
                    .parameter(Attribute::unsignedInteger("delay").mandatory())
                    .result(Attribute::text("report")));
    return cell;
}

}

ModelBuilder sampleBuilder() {
    ModelBuilder builder;
    builder.add(ClassDraft("Network").topLevel().key("id").attribute(AttributeDraft::text("label")))
        .add(ClassDraft("Node").key("id"))
        .add(cellClass())
        .add(ClassDraft("Antenna")
                 .key("id")
                 .attribute(AttributeDraft::reference("cell"))
                 .attribute(AttributeDraft::reference("power", {"Node"})))
        .contain("Network", "Node")
        .contain("Node", "Node")
        .contain("Node", "Cell")
        .contain("Node", "Antenna")
        .biDir(ReferenceDraft("Cell", "antennas").counts(0, 2).role("antennas").keepAtDelete(),
               ReferenceDraft("Antenna", "cell").counts(1, 1))
        .biDir(ReferenceDraft("Cell", "next"), ReferenceDraft("Cell", "previous"))
        .biDir(ReferenceDraft("Cell", "friends"), ReferenceDraft("Cell", "friends"))
        .add(ReferenceDraft("Cell", "source").to("Antenna").counts(0, 1))
        .add(ReferenceDraft("Antenna", "power").to("Node"))
        .add(ReferenceDraft("Cell", "source").to("Node").counts(0, 2));
    return builder;
}

Model sampleModel() {
    return sampleBuilder().build();
}

}
