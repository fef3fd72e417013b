// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Moves.h"

#include <algorithm>
#include <ostream>

namespace PropertyTests {

namespace {

Dns poolOf() {
    Dns dns;
    for (const std::string& moc : classes()) {
        for (const char* name : {"=1", "=10", "=2"}) {
            dns.push_back(moc + name);
        }
    }
    for (const char* parent : {"A=1,", "B=10,"}) {
        for (const std::string& moc : classes()) {
            dns.push_back(parent + moc + "=1");
        }
    }
    dns.push_back("A=1,B=1,C=1");
    return dns;
}

}

std::ostream& operator<<(std::ostream& out, const Move& move) {
    static const char* const names[] = {"create", "set", "delete", "commit", "abort"};
    out << names[static_cast<int>(move.kind)] << " " << objectOf(move) << " attribute "
        << move.attribute << " transaction " << move.transaction << " [";
    for (const std::string& reference : referencesOf(move)) {
        out << " " << reference;
    }
    return out << " ]";
}

rc::Gen<std::vector<Move>> movesGenerator() {
    using Kind = Move::Kind;
    const auto move = rc::gen::build<Move>(
        rc::gen::set(&Move::kind, rc::gen::weightedElement<Kind>({{8, Kind::Create},
                                                                  {12, Kind::Set},
                                                                  {4, Kind::Delete},
                                                                  {2, Kind::Commit},
                                                                  {1, Kind::Abort}})),
        rc::gen::set(&Move::transaction, rc::gen::inRange(0U, 12U)),
        rc::gen::set(&Move::object, rc::gen::inRange(0U, 64U)),
        rc::gen::set(&Move::attribute, rc::gen::inRange(0U, 16U)),
        rc::gen::set(&Move::references,
                     rc::gen::resize(5, rc::gen::container<std::vector<unsigned int>>(
                                            rc::gen::inRange(0U, 18U)))));
    return rc::gen::scale(0.6, rc::gen::container<std::vector<Move>>(move));
}

const Dns& classes() {
    static const Dns names = {"A", "B", "C"};
    return names;
}

const Dns& pool() {
    static const Dns dns = poolOf();
    return dns;
}

const std::string& objectOf(const Move& move) {
    return pick(pool(), move.object);
}

Dns referencesOf(const Move& move) {
    Dns dns;
    for (const unsigned int number : move.references) {
        dns.push_back(number < pool().size() ? pool()[number] : "Q=" + std::to_string(number));
    }
    return dns;
}

bool contains(const Dns& dns, const std::string& dn) {
    return std::find(dns.begin(), dns.end(), dn) != dns.end();
}

bool operator==(const Verdict& left, const Verdict& right) {
    return left.valid == right.valid && left.code == right.code && left.messages == right.messages;
}

std::ostream& operator<<(std::ostream& out, const Verdict& verdict) {
    out << (verdict.valid ? "valid, " : "not valid, ") << verdict.code;
    for (const std::string& message : verdict.messages) {
        out << "\n  " << message;
    }
    return out;
}

}
