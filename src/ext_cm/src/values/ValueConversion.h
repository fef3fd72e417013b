// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_VALUECONVERSION_H
#define ORV_EXT_CM_VALUECONVERSION_H

#include "AutoMemory.h"
#include "OrvMoAttributeValue.h"
#include "values/ConvertedResultData.h"
#include "values/IdMappings.h"

namespace OrvExtCmRouterService {

/// Translates the DNs in attribute values, for the versions that hand results back through release
/// functions. A value without DNs costs no copy: its view goes on sharing the original's slots.
///
/// A reference that cannot be translated passes through as it is. Nothing here fails but by
/// exhausted memory.
///
/// Threads: any; a value belongs to one thread.
class ValueConversion {
public:
    using NamedAttribute = OrvMoNamedAttributeValueContainer_3;

    /// Makes a record that \p memory owns.
    using NewRecordFn = NamedAttribute* (*)(Orv::AutoMemory& memory);

    explicit ValueConversion(const IdMappings& mappings);

    /// Converts references and structs; any other type is left alone. The value is readable.
    void transformContainer(ConvertedResultData& view, IdMappings::DnConversion direction) const;

    /// Converts what a router or an interceptor has answered, unless it is not readable: that is
    /// passed on as it is.
    void toExternal(ConvertedResultData& view) const;

    /// An array of null pointers, one more than \p attributes has before its terminator.
    static NamedAttribute** newArrayFor(NamedAttribute* const* attributes, Orv::AutoMemory& memory);

    /// An internal copy of one attribute, whose value is readable. Its name is the client's own
    /// text.
    NamedAttribute* toInternal(NamedAttribute& attribute, Orv::AutoMemory& memory,
                               NewRecordFn newRecord) const;

    /// An internal copy of all \p attributes, which are ended by a null pointer, each made as by
    /// the operation for one.
    NamedAttribute** toInternal(NamedAttribute* const* attributes, Orv::AutoMemory& memory,
                                NewRecordFn newRecord) const;

    /// A record from operator new, among the owned objects.
    static NamedAttribute* newOwnedRecord(Orv::AutoMemory& memory);

    /// A zeroed record among the raw blocks.
    static NamedAttribute* newBlockRecord(Orv::AutoMemory& memory);

private:
    class NestedMaker;

    void transformMoRefContainer(ConvertedResultData& view,
                                 IdMappings::DnConversion direction) const;
    void transformStructContainer(ConvertedResultData& view,
                                  IdMappings::DnConversion direction) const;

    const IdMappings& mMappings;
};

}

#endif
