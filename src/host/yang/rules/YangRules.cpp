// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangRules.h"

#include "base/DnView.h"
#include "yang/instances/InstanceDataError.h"
#include "yang/rules/DataTree.h"
#include "yang/rules/RuleJudge.h"
#include "yang/schema/Rule.h"

#include <algorithm>
#include <functional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

/// Trees are freed after so many objects, unless a rule asks about all of them at once.
constexpr std::size_t kObjectsOfATree = 4096;

using Action = std::function<void(const std::string& dn)>;

/// The object that contains objects at this place; null at the top.
const ObjectShape* parentOf(const YangSchema& schema, const ObjectShape& object) {
    return enclosingObject(schema, object.list->parent);
}

/// The DN that is this number of steps further up.
std::string ancestorOf(const std::string& dn, std::size_t steps) {
    DnView view(dn);
    for (; steps > 0; --steps) {
        view = view.parent();
    }
    return std::string(view.text());
}

}

/// The rules of a schema, ordered by what can break them.
class YangRules : public RuleCheck {
public:
    explicit YangRules(std::shared_ptr<const YangSchema> schema);
    YangRules(const YangRules&) = delete;
    YangRules& operator=(const YangRules&) = delete;

    RuleReport check(const ObjectView& view,
                     const std::vector<TouchedObject>& touched) const override;
    RuleReport checkAll(const ObjectView& view) const override;

private:
    using RulesByObject = std::unordered_map<const ObjectShape*, std::vector<const Rule*>>;

    std::shared_ptr<const YangSchema> mSchema;
    RulesByObject mOfOwner; ///< the rules of an object's own place
    RulesByObject mReaders; ///< the rules that ask about an object of another rule's owner
    RulesByObject mCounted; ///< the rules that count objects
    std::vector<const Rule*> mReadAll;

    friend class RuleRun;
};

/// One check.
class RuleRun {
public:
    RuleRun(const YangRules& rules, const ObjectView& view) : mRules(rules), mView(view) {}

    RuleReport take() && {
        judgeOwn();
        judgeFar();
        leaveOutRepetitions();
        mReport.cost.objects = mLookedAt.size();
        const auto end = std::chrono::steady_clock::now();
        mReport.cost.time = std::chrono::duration_cast<std::chrono::microseconds>(end - mBegin);
        return std::move(mReport);
    }

    void touch(const TouchedObject& object) {
        const ObjectShape* shape = schema().findByDn(object.dn);
        if (shape == nullptr) {
            return;
        }
        if (object.kind != TouchedObject::Kind::Deleted) {
            for (const Rule* rule : rulesOf(mRules.mOfOwner, shape)) {
                if (matters(*rule, *shape, object)) {
                    add(*rule, object.dn);
                }
            }
        }
        if (object.kind != TouchedObject::Kind::Changed) {
            for (const Rule* rule : rulesOf(mRules.mCounted, shape)) {
                addIfThere(*rule, std::string(DnView(object.dn).parent().text()));
            }
        }
        for (const Rule* rule : rulesOf(mRules.mReaders, shape)) {
            touchReader(*rule, *shape, object);
        }
        for (const Rule* rule : mRules.mReadAll) {
            addAllBelow(*rule, nullptr, "");
        }
    }

    void addAll() {
        for (const Rule& rule : schema().rules()) {
            addAllBelow(rule, nullptr, "");
        }
    }

private:
    const YangSchema& schema() const { return *mRules.mSchema; }

    /// True if what has changed in the object, which is the rule's owner, can matter to the rule.
    /// What a rule that asks about several objects asks about in this one is another matter.
    static bool matters(const Rule& rule, const ObjectShape& shape, const TouchedObject& object) {
        if (object.kind == TouchedObject::Kind::Created || asksWhatIsTaken(rule)) {
            return true;
        }
        const auto reads = rule.reach.reads.find(&shape);
        return std::any_of(
            object.attributes.begin(), object.attributes.end(), [&](const std::string& name) {
                const bool isRead = rule.reach.isOwn && reads != rule.reach.reads.end() &&
                                    reads->second.count(name) > 0;
                return isRead || name == rule.attribute;
            });
    }

    /// Whether a case of a choice is taken can depend on any attribute in it.
    static bool asksWhatIsTaken(const Rule& rule) {
        return rule.kind == Rule::Kind::Choice ||
               (rule.isDemanded && rule.node->parent->nodetype == LYS_CASE);
    }

    static const std::vector<const Rule*>& rulesOf(const YangRules::RulesByObject& all,
                                                   const ObjectShape* shape) {
        static const std::vector<const Rule*> none;
        const auto found = all.find(shape);
        return found == all.end() ? none : found->second;
    }

    /// The rule asks about the touched object, which is not its owner or not the only one.
    void touchReader(const Rule& rule, const ObjectShape& shape, const TouchedObject& object) {
        const std::set<std::string>& attributes = rule.reach.reads.at(&shape);
        const auto isRead = [&](const std::string& name) { return attributes.count(name) > 0; };
        if (object.kind == TouchedObject::Kind::Changed &&
            std::none_of(object.attributes.begin(), object.attributes.end(), isRead)) {
            return;
        }
        if (rule.reach.isOwn) {
            // What is below a new object is new, too.
            if (object.kind == TouchedObject::Kind::Changed) {
                addAllBelow(rule, &shape, object.dn);
            }
            return;
        }
        const ObjectShape* root = rule.reach.root;
        std::string rootDn = object.dn;
        const ObjectShape* reached = &shape;
        while (reached != nullptr && reached != root) {
            rootDn = DnView(rootDn).parent().text();
            reached = parentOf(schema(), *reached);
        }
        if (reached == nullptr) {
            addAllBelow(rule, nullptr, "");
        } else if (mView.exists(rootDn)) {
            addAllBelow(rule, root, rootDn);
        }
    }

    void add(const Rule& rule, const std::string& dn) {
        if (rule.needsValue && !hasValue(dn, rule.attribute)) {
            return;
        }
        (rule.reach.isOwn ? mOwn : mFar)[dn].insert(&rule);
    }

    bool hasValue(const std::string& dn, const std::string& attribute) {
        if (dn != mLatest.first) {
            mLatest = {dn, mView.valuesOf(dn)};
        }
        const std::vector<NamedValue>& values = mLatest.second;
        return std::any_of(values.begin(), values.end(), [&](const NamedValue& value) {
            return value.first == attribute && !value.second.values.empty();
        });
    }

    void addIfThere(const Rule& rule, const std::string& dn) {
        if (mView.exists(dn)) {
            add(rule, dn);
        }
    }

    /// Adds the rule for all its owners below an object, or below the top.
    void addAllBelow(const Rule& rule, const ObjectShape* root, const std::string& rootDn) {
        if (!mAdded.emplace(&rule, rootDn).second) {
            return;
        }
        if (rule.owner == nullptr) {
            add(rule, "");
        } else {
            visit(root, rootDn, rule.owner, [&](const std::string& dn) { add(rule, dn); });
        }
    }

    /// Calls the action for all objects at a place below an object, which can be that one itself.
    void visit(const ObjectShape* root, const std::string& rootDn, const ObjectShape* place,
               const Action& action) const {
        std::vector<const ObjectShape*> path;
        const ObjectShape* next = place;
        for (; next != nullptr && next != root; next = parentOf(schema(), *next)) {
            path.push_back(next);
        }
        if (next == root) {
            visitBelow(rootDn, path, path.size(), action);
        }
    }

    void visitBelow(const std::string& dn, const std::vector<const ObjectShape*>& path,
                    std::size_t left, const Action& action) const {
        if (left == 0) {
            action(dn);
            return;
        }
        const std::string& className = path[left - 1]->className;
        for (const std::string& name : mView.namesOf(dn, className)) {
            visitBelow(DnView(dn).child(className, name), path, left - 1, action);
        }
    }

    void judgeOwn() {
        auto next = mOwn.begin();
        while (next != mOwn.end()) {
            DataTree tree(mRules.mSchema, mView);
            const auto first = next;
            for (; next != mOwn.end() && tree.needed().size() < kObjectsOfATree; ++next) {
                tree.need(next->first);
            }
            judge(tree, first, next);
        }
    }

    void judgeFar() {
        if (mFar.empty()) {
            return;
        }
        DataTree tree(mRules.mSchema, mView);
        tree.keepOrder();
        for (const auto& [dn, rules] : mFar) {
            if (!dn.empty()) {
                tree.need(dn);
            }
            for (const Rule* rule : rules) {
                needReads(*rule, dn, tree);
            }
        }
        judge(tree, mFar.begin(), mFar.end());
    }

    void needReads(const Rule& rule, const std::string& dn, DataTree& tree) {
        if (rule.reach.readsAll) {
            needAll(nullptr, "", tree);
            return;
        }
        const ObjectShape* root = rule.reach.root;
        std::size_t steps = 0;
        for (const ObjectShape* at = rule.owner; at != nullptr && at != root; ++steps) {
            at = parentOf(schema(), *at);
        }
        const std::string rootDn = ancestorOf(dn, steps);
        for (const auto& [place, attributes] : rule.reach.reads) {
            if (mNeeded.emplace(place, rootDn).second) {
                visit(root, rootDn, place, [&](const std::string& read) { tree.need(read); });
            }
        }
    }

    void needAll(const ObjectShape* shape, const std::string& dn, DataTree& tree) {
        if (shape == nullptr && !mNeeded.emplace(nullptr, "").second) {
            return;
        }
        for (const ObjectShape* child : schema().childrenOf(shape)) {
            for (const std::string& name : mView.namesOf(dn, child->className)) {
                const std::string childDn = DnView(dn).child(child->className, name);
                tree.need(childDn);
                needAll(child, childDn, tree);
            }
        }
    }

    /// A `must` in a leaf-list is judged for each of its values, with the same text for all.
    void leaveOutRepetitions() {
        std::set<std::string> known;
        const auto isKnown = [&known](const RuleViolation& violation) {
            return !known.insert(toText(violation)).second;
        };
        std::vector<RuleViolation>& all = mReport.violations;
        all.erase(std::remove_if(all.begin(), all.end(), isKnown), all.end());
    }

    using Due = std::map<std::string, std::set<const Rule*>>;

    void judge(DataTree& tree, Due::const_iterator first, Due::const_iterator end) {
        mLookedAt.insert(tree.needed().begin(), tree.needed().end());
        try {
            tree.build();
        } catch (const InstanceDataError& error) {
            mReport.violations.push_back(
                {first->first, "", std::string("its rules cannot be checked: ") + error.what(),
                 ""});
            return;
        }
        RuleJudge judge(schema(), mView, tree, mReport.violations);
        for (; first != end; ++first) {
            for (const Rule* rule : first->second) {
                judge.judge(*rule, first->first);
            }
        }
    }

    const YangRules& mRules;
    const ObjectView& mView;
    const std::chrono::steady_clock::time_point mBegin = std::chrono::steady_clock::now();
    Due mOwn; ///< by DN: the rules that ask about this object and its ancestors only
    Due mFar; ///< the others
    std::set<std::pair<const Rule*, std::string>> mAdded;
    std::set<std::pair<const ObjectShape*, std::string>> mNeeded;
    std::unordered_set<std::string> mLookedAt;
    std::pair<std::string, std::vector<NamedValue>> mLatest; ///< the values of one object
    RuleReport mReport;
};

YangRules::YangRules(std::shared_ptr<const YangSchema> schema) : mSchema(std::move(schema)) {
    for (const Rule& rule : mSchema->rules()) {
        mOfOwner[rule.owner].push_back(&rule);
        if (rule.counted != nullptr) {
            mCounted[rule.counted].push_back(&rule);
        }
        if (rule.reach.readsAll) {
            mReadAll.push_back(&rule);
        }
        for (const auto& [object, attributes] : rule.reach.reads) {
            if (!rule.reach.isOwn || object != rule.owner) {
                mReaders[object].push_back(&rule);
            }
        }
    }
}

RuleReport YangRules::check(const ObjectView& view,
                            const std::vector<TouchedObject>& touched) const {
    RuleRun run(*this, view);
    for (const TouchedObject& object : touched) {
        run.touch(object);
    }
    return std::move(run).take();
}

RuleReport YangRules::checkAll(const ObjectView& view) const {
    RuleRun run(*this, view);
    run.addAll();
    return std::move(run).take();
}

std::shared_ptr<const RuleCheck> rulesOf(std::shared_ptr<const YangSchema> schema) {
    return schema->rules().empty() ? nullptr : std::make_shared<YangRules>(std::move(schema));
}

}
