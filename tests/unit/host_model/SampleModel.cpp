// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleModel.h"

namespace OrvHost {

namespace {

ClassSpec cellClass() {
    using Attribute = AttributeSpec;
    ClassSpec cell("Cell");
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
    cell.action(ActionSpec("restart")
                    .parameter(Attribute::unsignedInteger("delay").mandatory())
                    .result(Attribute::text("report")));
    return cell;
}

}

ModelBuilder sampleBuilder() {
    ModelBuilder builder;
    builder.add(ClassSpec("Network").topLevel().key("id").attribute(AttributeSpec::text("label")))
        .add(ClassSpec("Node").key("id"))
        .add(cellClass())
        .add(ClassSpec("Antenna")
                 .key("id")
                 .attribute(AttributeSpec::reference("cell"))
                 .attribute(AttributeSpec::reference("power", {"Node"})))
        .contain("Network", "Node")
        .contain("Node", "Node")
        .contain("Node", "Cell")
        .contain("Node", "Antenna")
        .biDir(ReferenceSpec("Cell", "antennas").counts(0, 2).role("antennas").keepAtDelete(),
               ReferenceSpec("Antenna", "cell").counts(1, 1))
        .biDir(ReferenceSpec("Cell", "next"), ReferenceSpec("Cell", "previous"))
        .biDir(ReferenceSpec("Cell", "friends"), ReferenceSpec("Cell", "friends"))
        .add(ReferenceSpec("Cell", "source").to("Antenna").counts(0, 1))
        .add(ReferenceSpec("Antenna", "power").to("Node"))
        .add(ReferenceSpec("Cell", "source").to("Node").counts(0, 2));
    return builder;
}

Model sampleModel() {
    return sampleBuilder().build();
}

}
