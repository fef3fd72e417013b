// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_SUPPORT_MIXTUREROUNDS_H
#define ORV_TESTS_HOST_SUPPORT_MIXTUREROUNDS_H

#include "store/MoStore.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

/// What the mixture (Mixture.h) has done in a round.
struct MixtureRun {
    std::vector<std::string> acknowledged; ///< the names of the transactions
    std::vector<std::string> problems;     ///< what a store has stopped with, or a thread
};

/// Two threads on each of two stores of one log. It begins with the objects of Mixture::load and
/// ends after \p steps transactions of each thread, or when its store writes no more.
MixtureRun runMixture(MoStore& one, MoStore& two, unsigned seed, unsigned steps);

/// The main function of a program that proves what the mixture can see. Its argument, in
/// \p arguments, is `whole` or `broken`: of the first, five rounds must find nothing wrong. In the
/// second a rule of the store is left out (NoSecondLook.cpp, NoChildCheck.cpp), and one of 200
/// rounds must find that something is wrong; it ends with that one.
///
/// \p round, with the number of the round, returns what is wrong, one text each; a HostError counts
/// as a text. Each is called in a process of its own: a store without its rules may end it.
int provesMixture(int count, char** arguments,
                  const std::function<std::vector<std::string>(unsigned number)>& round);

}

#endif
