// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_OPERATIONS_H
#define ORV_TESTS_COMPONENT_OPERATIONS_H

#include "Host.h"
#include "Records.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Scripted {

/// The transaction that an operation under test runs in.
constexpr unsigned long kFaultTx = 1;

/// How far the component's life has come before an operation is called.
enum class Life { Loaded, Initialised, Started };

/// The network (describeNetwork) with parts of units that use cells, with further MOs that no
/// operation touches, and what one call is given and answers. Everything is made before the call,
/// so that nothing but the component and the host allocates during it.
struct Scene {
    explicit Scene(Life stage);

    /// Hands back what the operation has answered with \p code, as a client does. After a failure
    /// there is nothing but what the producer left, which is its own.
    void giveBack(OrvReturnT code);

    Host host;
    Records records;
    Records1 records1;

    const OrvMoAttributeValueContainer_3* value = nullptr;
    OrvMoNamedAttributeValueContainer_3** named = nullptr;
    const OrvMoAttributeValueContainer* value1 = nullptr;
    OrvMoAttributeValueContainer** values1 = nullptr;

    OrvMoAttributeValueResult_3 read = {nullptr, nullptr};
    OrvMoAttributeValuesResult_3 readMany = {nullptr, nullptr};
    OrvMoAttributeValueContainer* read1 = nullptr;
    unsigned long long iterator = 0;
    void* iterator1 = nullptr;
    char* name = nullptr;
    unsigned long long count = 0;
    bool flag = false;
};

/// One call of one function that the component offers.
struct Operation {
    std::string name;
    void (*given)(Scene& scene);
    OrvReturnT (*when)(Scene& scene);
    OrvReturnT ordinarily = OrvOk; ///< the answer when nothing goes wrong
    Life stage = Life::Started;
};

/// The name, in what GoogleTest prints.
void PrintTo(const Operation& operation, std::ostream* out);

/// Every operation of every offered interface and of the component's life, the attribute operations
/// with and without an interceptor.
const std::vector<Operation>& operations();

/// \p operation's name with nothing but letters and digits.
std::string plainName(const Operation& operation);

/// One call of a run: the name, and which of the calls of that name it is, from 1.
struct Place {
    std::string name;
    int number;
    std::string text;
};

/// The calls of a run that have an answer, in their order.
std::vector<Place> placesIn(const std::vector<Call>& calls);

/// The journal's calls of routers that write, or make somebody write.
std::vector<std::string> writesIn(const std::vector<std::string>& calls);

/// Whatever \p operation has answered: brings the component to where it serves, lets a thread of
/// its own use it in another transaction through every lock that there is, and ends the
/// transaction of the operation. A lock that was left held ends the program with a message.
void expectServes(Scene& scene, const Operation& operation);

}

#endif
