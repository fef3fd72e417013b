// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ValueConversion.h"

#include "values/StructConversion.h"

#include <string>

namespace OrvExtCmRouterService {

/// Makes the values of a struct that is rebuilt for the view \p root. All belong to the root: a
/// view that belonged to the one around it would be destroyed by recursion over the depth of the
/// value.
class ValueConversion::NestedMaker {
public:
    using Container = OrvMoAttributeValueContainer_3;

    NestedMaker(const ValueConversion& conversion, ConvertedResultData& root,
                IdMappings::DnConversion direction)
        : mConversion(conversion), mRoot(root), mDirection(direction) {}

    Container* convert(Container* original, OrvMoAttributeValue_3*& slots) {
        ConvertedResultData& nested = mRoot.addNested(original);
        if (nested.type == OrvMoAttributeTypeMoRef_3) {
            mConversion.transformMoRefContainer(nested, mDirection);
        } else if (isStructWithReferences(nested)) {
            slots = nested.ownValues();
        }
        return &nested;
    }

private:
    const ValueConversion& mConversion;
    ConvertedResultData& mRoot;
    IdMappings::DnConversion mDirection;
};

void ValueConversion::transformContainer(ConvertedResultData& view,
                                         IdMappings::DnConversion direction) const {
    if (view.type == OrvMoAttributeTypeMoRef_3) {
        transformMoRefContainer(view, direction);
    } else if (isStructWithReferences(view)) {
        transformStructContainer(view, direction);
    }
}

// The call has been done, so its result belongs to the client even if it cannot be read here.
void ValueConversion::toExternal(ConvertedResultData& view) const {
    if (isReadable(view)) {
        transformContainer(view, IdMappings::ToExternal);
    }
}

ValueConversion::Slot* ValueConversion::internalSlots(const OrvMoAttributeValueContainer_3& value,
                                                      Orv::AutoMemory& memory) const {
    if (value.type == OrvMoAttributeTypeMoRef_3) {
        return value.count != 0
                   ? translatedSlots(value.values, value.count, IdMappings::ToInternal, memory)
                   : value.values;
    }
    if (!isStructWithReferences(value)) {
        return value.values;
    }
    // The view does not write to the original.
    auto* const view =
        new ConvertedResultData(nullptr, const_cast<OrvMoAttributeValueContainer_3*>(&value));
    memory.own(view);
    transformStructContainer(*view, IdMappings::ToInternal);
    return view->values;
}

// A reference that cannot be translated stays the producer's text: it lives as long as the value
// that it came with.
ValueConversion::Slot* ValueConversion::translatedSlots(const Slot* references, std::uint32_t count,
                                                        IdMappings::DnConversion direction,
                                                        Orv::AutoMemory& memory) const {
    Slot* const slots = memory.malloc<Slot>(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        const char* const original = references[index].moRef;
        const std::string text = mMappings.convertDn(original, direction);
        slots[index].moRef = text.empty() ? original : memory.strdup(text.c_str());
    }
    return slots;
}

// An empty value keeps the producer's array.
void ValueConversion::transformMoRefContainer(ConvertedResultData& view,
                                              IdMappings::DnConversion direction) const {
    if (view.count != 0) {
        view.values = translatedSlots(view.values, view.count, direction, view);
    }
}

void ValueConversion::transformStructContainer(ConvertedResultData& view,
                                               IdMappings::DnConversion direction) const {
    const OrvMoAttributeValueContainer_3 original = view; // its slots are those of the producer
    NestedMaker maker(*this, view, direction);
    StructConversion<NestedMaker>(maker, view).rebuild(original, view.ownValues());
}

}
