// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_PROPERTY_MOVES_H
#define ORV_TESTS_PROPERTY_MOVES_H

#include <rapidcheck.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace PropertyTests {

using Dns = std::vector<std::string>;

/// What a client does next, as numbers that get their meaning from the state of a game: each number
/// is taken modulo the number of choices.
struct Move {
    enum class Kind { Create, Set, Delete, Commit, Abort };
    Kind kind = Kind::Create;
    unsigned int transaction = 0; ///< for games that have several open
    unsigned int object = 0;
    unsigned int attribute = 0;
    std::vector<unsigned int> references;
};

std::ostream& operator<<(std::ostream& out, const Move& move);

rc::Gen<std::vector<Move>> movesGenerator();

/// The names of the classes of all generated models.
const Dns& classes();

/// The DNs of all games. They are few, so that objects are created, deleted and created again, and
/// some names begin with others.
const Dns& pool();

/// The object of a move.
const std::string& objectOf(const Move& move);

/// The references of a move. Numbers beyond the pool are DNs without a class.
Dns referencesOf(const Move& move);

template <class List>
const auto& pick(const List& list, unsigned int number) {
    return list[number % list.size()];
}

bool contains(const Dns& dns, const std::string& dn);

/// The result of a validation.
struct Verdict {
    bool valid = true;
    int code = 0;
    std::vector<std::string> messages;
};

bool operator==(const Verdict& left, const Verdict& right);
std::ostream& operator<<(std::ostream& out, const Verdict& verdict);

}

#endif
