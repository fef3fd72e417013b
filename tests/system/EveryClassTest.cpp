// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// One test for every class of a set of public YANG modules: an object of it can be created with
// generated values, read back, referred to, validated and deleted, by a client of the component. A
// test fails with what the router and the component said.
//
// every_class_test SET [SEARCHED...]: SET is a directory in ORV_PUBLIC_MODULES, the others there
// are searched for imports. Without ORV_PUBLIC_MODULES the program ends with status 77, which CTest
// shows as "not run".

#include "GeneratedValues.h"
#include "base/DnView.h"
#include "base/Join.h"
#include "client/Client.h"
#include "client/NewObject.h"
#include "runtime/Host.h"
#include "yang/schema/YangModelReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <regex>
#include <sstream>

namespace SystemTest {

namespace {

using namespace OrvHost;
namespace fs = std::filesystem;
using testing::IsEmpty;

constexpr int kNotRun = 77;
constexpr const char* kRoot = "ManagedElement=1";

std::vector<std::string> modulesIn(const fs::path& directory) {
    static const std::regex module(R"((^|\n)\s*module\s)");
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        std::ifstream file(entry.path());
        std::ostringstream text;
        text << file.rdbuf();
        if (entry.path().extension() == ".yang" && std::regex_search(text.str(), module)) {
            const std::string stem = entry.path().stem();
            names.insert(stem.substr(0, stem.find('@')));
        }
    }
    return {names.begin(), names.end()};
}

/// The model of the whole set, and a host with the component.
class Network {
public:
    /// The modules of the first directory.
    explicit Network(const std::vector<fs::path>& directories) : mModel(read(directories)) {
        HostOptions options;
        options.preferredIdentity = "1";
        mHost = std::make_unique<Host>(mModel.model, options);
        mHost->loadComponent(EXT_CM_PATH);
        mHost->start();
        findPaths();
    }

    const Model& model() const { return mModel.model; }
    Host& host() { return *mHost; }

    /// The classes from the top level to this one, on a shortest way.
    std::vector<ClassIndex> pathTo(ClassIndex moc) const {
        std::vector<ClassIndex> path{moc};
        while (mParents.at(path.front())) {
            path.insert(path.begin(), *mParents.at(path.front()));
        }
        return path;
    }

private:
    static YangModel read(const std::vector<fs::path>& directories) {
        YangModelReader reader;
        for (const fs::path& directory : directories) {
            reader.searchIn(directory);
        }
        for (const std::string& module : modulesIn(directories.front())) {
            reader.load(module);
        }
        return reader.read();
    }

    void findPaths() {
        std::deque<ClassIndex> toVisit;
        for (ClassIndex index = 0; index < model().classes.size(); ++index) {
            if (model().classes[index].isTopLevel) {
                mParents.emplace(index, std::nullopt);
                toVisit.push_back(index);
            }
        }
        for (; !toVisit.empty(); toVisit.pop_front()) {
            for (const ClassIndex child : model().classes[toVisit.front()].children) {
                if (mParents.emplace(child, toVisit.front()).second) {
                    toVisit.push_back(child);
                }
            }
        }
    }

    YangModel mModel;
    std::unique_ptr<Host> mHost;
    std::map<ClassIndex, std::optional<ClassIndex>> mParents;
};

/// How much of the attributes the tests have reached, over all classes.
struct Tally {
    std::size_t written = 0;
    std::vector<std::string> withoutValue; ///< Class.attribute for which nothing was found
};

class EveryClassTest : public testing::Test {
public:
    EveryClassTest(Network& network, Tally& tally, ClassIndex moc)
        : mNetwork(network),
          mTally(tally),
          mMoc(moc),
          mValues(network.model(), kRoot),
          mClient(network.host()),
          mTxHandle(network.host().transactions().begin()) {}

    ~EveryClassTest() override { mNetwork.host().transactions().abort(mTxHandle); }

    void TestBody() override {
        try {
            run();
        } catch (const OperationError& error) {
            FAIL() << error.subject().operation << " " << error.subject().dn << ": code "
                   << error.code() << "\n"
                   << joinedLines(error.messages(), [](const ThreadContext::Message& message) {
                          return message.text;
                      });
        }
    }

private:
    const Model& model() const { return mNetwork.model(); }
    const ClassDef& moc() const { return model().classes[mMoc]; }

    void run() {
        const std::string dn = createWithAncestors(mMoc);
        ASSERT_FALSE(HasFatalFailure());
        writeAndReadAll(dn);
        EXPECT_THAT(verdict(), IsEmpty());
        refer(dn);
        EXPECT_THAT(verdict(), IsEmpty());
        mClient.remove(mTxHandle, dn);
        EXPECT_FALSE(mClient.exists(mTxHandle, dn));
    }

    std::string createWithAncestors(ClassIndex last) {
        std::string dn;
        for (const ClassIndex index : mNetwork.pathTo(last)) {
            const ClassDef& one = model().classes[index];
            const bool isRoot = dn.empty() && one.name == "ManagedElement";
            const auto name = isRoot ? std::optional<std::string>("1") : mValues.nameOf(one);
            if (!name) {
                ADD_FAILURE() << "no name was found for an object of class " << one.name;
                return dn;
            }
            dn = create(dn, one, *name);
        }
        return dn;
    }

    /// With all that an object must have.
    std::string create(const std::string& parentDn, const ClassDef& one, const std::string& name) {
        const std::string dn = DnView(parentDn).child(one.name, name);
        if (mClient.exists(mTxHandle, dn)) {
            return dn;
        }
        std::vector<NamedValue> attributes;
        for (const AttributeDef& def : one.attributes) {
            if (!isNeeded(one, def)) {
                continue;
            }
            auto value = mValues.valueOf(def);
            if (value) {
                attributes.emplace_back(def.name, std::move(*value));
            } else {
                ADD_FAILURE() << "no value was found for the mandatory attribute " << one.name
                              << "." << def.name << ", " << def.type.description;
            }
        }
        mClient.create(mTxHandle, parseNewObject(model(), dn), attributes);
        for (const ClassIndex child : one.children) {
            if (model().classes[child].instances.lower > 0) {
                const auto childName = mValues.nameOf(model().classes[child]);
                create(dn, model().classes[child], childName.value_or("1"));
            }
        }
        return dn;
    }

    static bool isNeeded(const ClassDef& one, const AttributeDef& def) {
        if (def.isRequired()) {
            return true;
        }
        return std::any_of(one.choices.begin(), one.choices.end(), [&](const ChoiceDef& choice) {
            const auto& required = choice.cases.front().required;
            return choice.isMandatory && choice.around.empty() && def.isWritable &&
                   std::find(required.begin(), required.end(), def.name) != required.end();
        });
    }

    void writeAndReadAll(const std::string& dn) {
        const std::set<std::string> left = GeneratedValues::leftOut(moc().choices);
        for (const AttributeDef& def : moc().attributes) {
            if (def.isGivenByName()) {
                EXPECT_FALSE(read(dn, def).values.empty()) << def.name;
            }
            if (def.isGivenByName() || !def.isWritable || left.count(def.name) > 0) {
                continue;
            }
            const auto value = mValues.valueOf(def);
            if (!value) {
                mTally.withoutValue.push_back(moc().name + "." + def.name + " (" +
                                              def.type.description + ")");
                continue;
            }
            mClient.set(mTxHandle, dn, {{def.name, *value}});
            EXPECT_EQ(read(dn, def), *value) << def.name;
            ++mTally.written;
        }
    }

    AttributeValue read(const std::string& dn, const AttributeDef& def) {
        const ReadValue answer = mClient.get(mTxHandle, dn, def.name, &moc());
        return toAttributeValue(answer, def.type.kind).value_or(AttributeValue{});
    }

    /// From an object of the first class that may refer to this one, if there is any.
    void refer(const std::string& target) {
        for (ClassIndex index = 0; index < model().classes.size(); ++index) {
            for (const AttributeDef& def : model().classes[index].attributes) {
                const auto& targets = def.type.targets;
                const bool mayRefer = def.type.kind == ValueKind::MoRef && def.isWritable &&
                                      (targets.empty() || std::find(targets.begin(), targets.end(),
                                                                    mMoc) != targets.end());
                if (!mayRefer) {
                    continue;
                }
                const AttributeValue value{ValueKind::MoRef, {target}};
                const std::string owner = createWithAncestors(index);
                mClient.set(mTxHandle, owner, {{def.name, value}});
                const ReadValue answer =
                    mClient.get(mTxHandle, owner, def.name, &model().classes[index]);
                EXPECT_EQ(toAttributeValue(answer, ValueKind::MoRef), value) << owner;
                return;
            }
        }
    }

    /// What validation says against the transaction.
    std::vector<std::string> verdict() {
        std::vector<std::string> texts;
        const TransactionOutcome outcome = mNetwork.host().transactions().validate(mTxHandle);
        for (const ThreadContext::Message& message : outcome.messages) {
            texts.push_back(message.text);
        }
        if (!outcome.accepted && texts.empty()) {
            texts.push_back("refused with code " + std::to_string(outcome.code));
        }
        return texts;
    }

    Network& mNetwork;
    Tally& mTally;
    ClassIndex mMoc;
    GeneratedValues mValues;
    Client mClient;
    unsigned long mTxHandle;
};

/// The name of a class as the name of a test.
std::string testName(std::string name) {
    std::replace_if(
        name.begin(), name.end(),
        [](char letter) { return std::isalnum(static_cast<unsigned char>(letter)) == 0; }, '_');
    return name;
}

int runAll(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const char* root = std::getenv("ORV_PUBLIC_MODULES");
    if (root == nullptr) {
        std::cout << "ORV_PUBLIC_MODULES does not name a directory of public YANG modules\n";
        return kNotRun;
    }
    if (argc < 2) {
        std::cout << "expected the name of a set\n";
        return 1;
    }
    std::vector<fs::path> directories;
    for (int at = 1; at < argc; ++at) {
        directories.push_back(fs::path(root) / argv[at]);
    }
    Network network(directories);
    Tally tally;
    for (ClassIndex index = 0; index < network.model().classes.size(); ++index) {
        const ClassDef& moc = network.model().classes[index];
        testing::RegisterTest("EveryClass", testName(moc.name).c_str(), nullptr, nullptr,
                              moc.source.file.c_str(), moc.source.line,
                              [&network, &tally, index]() -> testing::Test* {
                                  return new EveryClassTest(network, tally, index);
                              });
    }
    const int status = RUN_ALL_TESTS();
    std::cout << network.model().classes.size() << " classes, " << tally.written
              << " attributes written and read, " << tally.withoutValue.size()
              << " without a value that fits\n"
              << joinedLines(tally.withoutValue, [](const std::string& one) { return "  " + one; })
              << "\n";
    return tally.withoutValue.empty() ? status : 1; // or a part of the model was not looked at
}

}

}

int main(int argc, char** argv) {
    try {
        return SystemTest::runAll(argc, argv);
    } catch (const std::exception& failure) {
        std::cout << failure.what() << "\n";
        return 1;
    }
}
