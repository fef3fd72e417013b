// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef CELL_STATE_CELLSTATEINTERCEPTOR_H
#define CELL_STATE_CELLSTATEINTERCEPTOR_H

#include <orv/MoInterceptorBase.h>
#include <orv/OrvReturn.h>

/// Serves the attribute `operationalState` of all cells of a distributed unit. Its value is
/// computed from `administrativeState` as the transaction sees it, and never stored.
///
/// Refuses to shut down a cell that is locked, and says why to the client. All other attributes and
/// writes go to the router as if this object did not exist.
///
/// Threads: enter and leave are called at the start and stop of a component, while no operation
/// runs. The operations may run on any number of threads at once: they do not change this object.
class CellStateInterceptor : public OrvExtCmRouterService::MoInterceptorBase {
public:
    /// Finds the tables of the host and the repository, and adds this object to the repository.
    /// OrvFailure if something is not found; OrvAlreadyExist if another interceptor serves the
    /// cells.
    OrvReturnT enter();

    /// Removes this object from the repository. Only after an enter that succeeded.
    void leave();

    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueResult_3* result) override;
    OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attrNames,
                               OrvMoAttributeValuesResult_3* result) override;
    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer_3* value) override;
    OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                               VekMoNamedAttributeValueContainer_3** attributes) override;

private:
    /// OrvOk if the cell may get this value in this transaction. Otherwise the code to return; the
    /// client has the reason already.
    OrvReturnT judge(unsigned long txHandle, const char* dn, const char* attrName,
                     const OrvMoAttributeValueContainer_3* value);
};

#endif
