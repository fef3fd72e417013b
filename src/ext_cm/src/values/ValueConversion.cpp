// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ValueConversion.h"

#include "values/StructConversion.h"

#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

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

ValueConversion::Slot* ValueConversion::internalSlots(const OrvMoAttributeValueContainer_3& value,
                                                      ConversionMemory& memory) const {
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
    memory.heap().own(view);
    transformStructContainer(*view, IdMappings::ToInternal);
    return view->values;
}

// One block holds the slots and behind them the texts. A reference that cannot be translated stays
// the producer's text: it lives as long as the value that it came with.
template <class Memory>
ValueConversion::Slot* ValueConversion::translatedSlots(const Slot* references, std::uint32_t count,
                                                        IdMappings::DnConversion direction,
                                                        Memory& memory) const {
    std::string one; // most values have one reference
    std::vector<std::string> several;
    std::string* texts = &one;
    if (count > 1) {
        several.resize(count);
        texts = several.data();
    }
    std::size_t length = 0; // of the texts, with their ends
    for (std::uint32_t index = 0; index < count; ++index) {
        texts[index] = mMappings.convertDn(references[index].moRef, direction);
        length += texts[index].size() + 1;
    }
    const std::size_t size = count + (length + sizeof(Slot) - 1) / sizeof(Slot); // in slots
    if (size > std::numeric_limits<unsigned int>::max()) {
        throw std::bad_alloc(); // GCOVR_EXCL_LINE: texts of more than 32 GB
    }
    Slot* const slots = present(memory.template malloc<Slot>(static_cast<unsigned int>(size)));
    char* next = static_cast<char*>(static_cast<void*>(slots + count));
    for (std::uint32_t index = 0; index < count; ++index) {
        const std::string& text = texts[index];
        if (text.empty()) {
            slots[index].moRef = references[index].moRef;
        } else {
            slots[index].moRef = next;
            next = static_cast<char*>(std::memcpy(next, text.c_str(), text.size() + 1)) +
                   text.size() + 1;
        }
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
