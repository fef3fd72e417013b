// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Commands.h"

#include "base/DnView.h"
#include "cli/session/Session.h"
#include "client/CountBelow.h"

#include <cstdint>
#include <limits>

namespace OrvHost {

namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

/// One child. All children are collected before the first is printed, since a line shows whether it
/// is the last one.
struct Child {
    std::string className;
    std::string name;
};

/// Walks a subtree in one transaction.
class TreePrinter {
public:
    TreePrinter(Session& session, unsigned long txHandle, std::uint64_t depth)
        : mSession(session), mTxHandle(txHandle), mDepth(depth) {}

    void printBelow(const std::string& dn, const std::string& indent, std::uint64_t level) {
        const std::vector<Child> all = children(dn);
        for (std::size_t position = 0; position < all.size(); ++position) {
            mSession.cancellation().throwIfCancelled();
            const bool isLast = position + 1 == all.size();
            const Child& child = all[position];
            const std::string childDn = DnView(dn).child(child.className, child.name);
            const std::string mark = cutMark(childDn, level + 1); // can end by Ctrl-C
            mSession.out() << indent << (isLast ? "└── " : "├── ") << child.className << '='
                           << child.name << mark << '\n';
            if (level + 1 < mDepth) {
                printBelow(childDn, indent + (isLast ? "    " : "│   "), level + 1);
            }
        }
    }

    JsonValue childrenJson(const std::string& dn, std::uint64_t level) {
        JsonValue result = JsonValue::array();
        for (const Child& child : children(dn)) {
            result.add(nodeJson(DnView(dn).child(child.className, child.name), level));
        }
        return result;
    }

    JsonValue nodeJson(const std::string& dn, std::uint64_t level) {
        JsonValue node{{"dn", dn}};
        if (level < mDepth) {
            node["children"] = childrenJson(dn, level + 1);
        } else {
            node["below"] = countBelow(mSession, mTxHandle, dn);
        }
        return node;
    }

    /// " (12 below)" where objects below are not shown.
    std::string cutMark(const std::string& dn, std::uint64_t level) {
        const unsigned long long below = level >= mDepth ? countBelow(mSession, mTxHandle, dn) : 0;
        return mSession.colours().remark(below > 0 ? " (" + std::to_string(below) + " below)"
                                                   : std::string());
    }

private:
    std::vector<Child> children(const std::string& dn) {
        std::vector<Child> result;
        for (const std::string& className : childClassesOf(mSession, dn)) {
            mSession.client().forEachChild(mTxHandle, dn, className, [&](const std::string& name) {
                result.push_back({className, name});
                return true;
            });
        }
        return result;
    }

    Session& mSession;
    unsigned long mTxHandle;
    std::uint64_t mDepth;
};

}

void runTree(Session& session, Words words) {
    const std::uint64_t depth = words.takeNumber("--depth").value_or(kNoLimit);
    const std::string dn = words.takeDnOrHere(session.model());
    words.end();
    if (!dn.empty()) {
        session.requireObject(dn);
    }
    session.read([&](unsigned long txHandle) {
        TreePrinter printer(session, txHandle, depth);
        if (session.wantsJson()) {
            session.print({{"command", "tree"}, {"tree", printer.nodeJson(dn, 0)}});
            return;
        }
        const std::string mark = printer.cutMark(dn, 0);
        session.out() << (dn.empty() ? "/" : dn) << mark << '\n';
        if (depth > 0) {
            printer.printBelow(dn, "", 0);
        }
    });
}

}
