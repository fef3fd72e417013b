// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COST_STUBHOST_H
#define ORV_TESTS_COST_STUBHOST_H

#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "OrvReturn.h"
#include "VekOamSpiManagedObject_3_1.h"

namespace OrvCost {

/// Ends the process with a message unless \p code is OrvOk: the cost of a call that failed would be
/// meaningless.
void check(OrvReturnT code, const char* what);

/// A container of one value that points at \p text.
struct OneText {
    OneText(int typeCode, const char* text);
    OneText(const OneText&) = delete;
    OneText& operator=(const OneText&) = delete;

    OrvMoAttributeValue_3 slot{};
    OrvMoAttributeValueContainer_3 container{};
};

/// A host whose tables answer each call at once with constants, and the component in it. What a
/// call of the component costs beside these answers is the cost of the component and of what it
/// uses.
///
/// The model has three classes of objects, which differ in the first letter of the second step of
/// their DNs: Unit and Cell are associated with each other by the attributes `cells` of Unit and
/// `unit` of Cell; Rack has no association. The root is `H` for clients.
///
/// Functions of the program count as the host's (see check_cost.py), so none of them may be called
/// by the component except through a table. One object lives in a process. Traces are off.
class StubHost {
public:
    /// Loads and starts the component at \p library.
    explicit StubHost(const char* library);
    StubHost(const StubHost&) = delete;
    StubHost& operator=(const StubHost&) = delete;
    ~StubHost();

    const OrvOamSpiManagedObject_3& objects3() const { return *mObjects3; }
    const VekOamSpiManagedObject_3_1& objects3_1() const { return *mObjects3_1; }
    const OrvOamSpiTransactionalResource_2& resource() const { return *mResource; }

private:
    void* mLibrary;
    OrvMgmtSpiComponent_1* mComponent = nullptr;
    const OrvOamSpiManagedObject_3* mObjects3 = nullptr;
    const VekOamSpiManagedObject_3_1* mObjects3_1 = nullptr;
    const OrvOamSpiTransactionalResource_2* mResource = nullptr;
};

}

#endif
