// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostWorkloads.h"
#include "HostWorld.h"

#include "model/building/ModelBuilder.h"

namespace OrvBench {

namespace {

const std::vector<int> kSizes = {100, 1000, 10000};

// One object is changed again and again while a transaction is open that began before.
void versions(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.antennaCount = 1;
    HostWorld world(component, shape);
    const std::string antenna = HostWorld::antenna(0);
    const std::vector<Value3> labels = {Value3::text("one label"), Value3::text("other label")};
    const unsigned long reader = world.begin();
    const auto readFirst = [&] {
        require(world.texts(reader, antenna, "label").front() == "antenna 0", "snapshot");
    };
    measure("change, commit", size, [&] {
        for (int number = 0; number < size; ++number) {
            const unsigned long tx = world.begin();
            world.set(tx, antenna, "label", labels[static_cast<std::size_t>(number % 2)]);
            world.commit(tx);
        }
    });
    measure("read the first version", size, [&] {
        for (int number = 0; number < size; ++number) {
            readFirst();
        }
    });
    measure("reclaim", size, [&] { world.abort(reader); });
}

void deleteFirst(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.antennaCount = size;
    HostWorld world(component, shape);
    const auto& table = world.table();
    const unsigned long tx = world.begin();
    measure("find the first, delete it", size, [&] {
        for (int number = 0; number < size; ++number) {
            unsigned long long iterator = 0;
            char* name = nullptr;
            table.newMoIterator(tx, HostWorld::site().c_str(), "Antenna", &iterator);
            table.nextMo(iterator, &name);
            require(name == std::to_string(number), "first child");
            table.finalizeMoIterator(iterator);
            require(table.deleteMo(tx, HostWorld::antenna(number).c_str()) == OrvOk, "deleteMo");
        }
    });
    require(world.count(tx, HostWorld::site(), "Antenna") == 0, "count");
    world.abort(tx);
}

void countAfterDelete(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.antennaCount = size;
    HostWorld world(component, shape);
    const unsigned long tx = world.begin();
    const std::string antenna = HostWorld::antenna(0);
    require(world.table().deleteMo(tx, antenna.c_str()) == OrvOk, "deleteMo");
    measure("count", 100, [&] {
        for (int turn = 0; turn < 100; ++turn) {
            require(world.count(tx, HostWorld::site(), "Antenna") + 1 ==
                        static_cast<unsigned long long>(size),
                    "count");
        }
    });
    world.abort(tx);
}

// A text of an object that also has many references.
void besideReferences(const std::string& component, int size, const Meter& measure) {
    HostShape shape;
    shape.antennaCount = 1;
    shape.mastCount = size;
    HostWorld world(component, shape);
    const std::string antenna = HostWorld::antenna(0);
    std::vector<std::string> masts;
    for (int number = 0; number < size; ++number) {
        masts.push_back(HostWorld::mast(number));
    }
    unsigned long tx = world.begin();
    world.set(tx, antenna, "near", Value3::references(std::move(masts)));
    world.commit(tx);
    tx = world.begin();
    measure("read a text", 100, [&] {
        for (int turn = 0; turn < 100; ++turn) {
            require(world.texts(tx, antenna, "label").size() == 1, "label");
        }
    });
    const Value3 label = Value3::text("another label");
    measure("write a text", 100, [&] {
        for (int turn = 0; turn < 100; ++turn) {
            world.set(tx, antenna, "label", label);
        }
    });
    world.abort(tx);
}

// A class that may stand under many classes, each of which may have many children.
void manyClasses(const std::string&, int size, const Meter& measure) {
    using namespace OrvHost;
    ModelBuilder builder;
    builder.add(ClassDraft("Root").topLevel().key("rootId"));
    builder.add(ClassDraft("Leaf").key("leafId"));
    std::vector<std::string> dns;
    for (int number = 0; number < size; ++number) {
        const std::string name = "Box" + std::to_string(number);
        builder.add(ClassDraft(name).key("boxId"));
        builder.contain("Root", name).contain(name, "Leaf");
        dns.push_back("Root=1," + name + "=1,Leaf=1");
    }
    const Model model = builder.build();
    const ClassIndex leaf = model.findClass("Leaf").value();
    measure("class of a DN", size, [&] {
        for (const std::string& dn : dns) {
            require(model.findClassOfDn(dn) == leaf, "class of a DN");
        }
    });
    measure("permitted parent", size, [&] {
        for (ClassIndex moc = 2; moc < model.classes.size(); ++moc) {
            require(model.classes[leaf].mayStandUnder(moc), "permitted parent");
        }
    });
}

}

std::vector<HostWorkload> hostGrowthWorkloads() {
    return {{"versions of an object under an open reader", kSizes, versions},
            {"first of n children deleted, n times", kSizes, deleteFirst},
            {"n children counted after a delete", kSizes, countAfterDelete},
            {"a text beside n references", kSizes, besideReferences},
            {"a class under n classes", {100, 1000}, manyClasses}};
}

}
