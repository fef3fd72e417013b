// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The conversion of values in both directions: what must change, what must be the producer's own,
// and that nothing is written to the original.

#include "MoImpl.h"
#include "life/TransactionData.h"
#include "support/RecordMaker.h"
#include "support/Require.h"
#include "values/ConversionMemory.h"
#include "values/ConvertedResultData.h"
#include "values/IdMappings.h"
#include "values/ValueConversion.h"

#include <string>

using namespace Fuzz;
using namespace OrvExtCmRouterService;

namespace {

using Direction = IdMappings::DnConversion;

/// All that a record holds, as text.
template <class Container>
void dump(const Container& container, std::string& text) {
    text += std::to_string(container.type) + "*" + std::to_string(container.count) + "[";
    for (std::uint32_t at = 0; at < container.count; ++at) {
        const auto& slot = container.values[at];
        if (container.type == OrvMoAttributeTypeMoRef_3) {
            text.append(slot.moRef).append(",");
        } else if (container.type == OrvMoAttributeTypeStruct_3) {
            text += "{";
            for (const auto* member = slot.structValue; member != nullptr; member = member->next) {
                text.append(member->name).append(":");
                if (member->value != nullptr) {
                    dump(*member->value, text);
                }
            }
            text += "}";
        } else {
            text += std::to_string(slot.uint64) + ",";
        }
    }
    text += "]";
}

template <class Container>
std::string dumped(const Container& container) {
    std::string text;
    dump(container, text);
    return text;
}

/// What a conversion must have made of a record, written independently of the conversion itself.
template <class Version>
class Judge {
public:
    using Container = typename Version::Container;
    using Member = typename Version::Member;

    Judge(const IdMappings& mappings, Direction direction)
        : mMappings(mappings), mDirection(direction) {}

    /// \p original may be null, which gives an empty record.
    void check(const Container* original, const Container& converted) const {
        static const Container kNone{};
        const Container& source = original != nullptr ? *original : kNone;
        require(converted.type == source.type, "the type changes");
        require(converted.count == source.count, "the count changes");
        if (source.count > 0 && source.type == OrvMoAttributeTypeMoRef_3) {
            require(converted.values != source.values, "references are not copied");
            for (std::uint32_t at = 0; at < source.count; ++at) {
                checkReference(source.values[at].moRef, converted.values[at].moRef);
            }
        } else if (showsReference(source)) {
            require(converted.values != source.values, "structs are not copied");
            for (std::uint32_t at = 0; at < source.count; ++at) {
                checkMembers(source.values[at].structValue, converted.values[at].structValue);
            }
        } else if (source.type != OrvMoAttributeTypeMoRef_3) {
            require(converted.values == source.values, "values are copied for nothing");
        }
    }

private:
    static bool showsReference(const Container& source) {
        if (source.type != OrvMoAttributeTypeStruct_3 || source.count == 0) {
            return false;
        }
        for (const Member* member = source.values[0].structValue; member != nullptr;
             member = member->next) {
            if (member->value->type == OrvMoAttributeTypeMoRef_3) {
                return true;
            }
        }
        return false;
    }

    void checkReference(const char* original, const char* converted) const {
        const std::string text = mMappings.convertDn(original, mDirection);
        if (text.empty()) {
            require(std::string(converted) == original, "an unknown DN changes");
            require((converted == original) == Version::hasBareMembers,
                    "an unknown DN is not the producer's, or not a copy in version 1");
            return;
        }
        require(text == converted, "a DN is wrong");
        require(converted != original, "a DN is not copied");
        const Direction back =
            mDirection == IdMappings::ToInternal ? IdMappings::ToExternal : IdMappings::ToInternal;
        require(mMappings.convertDn(text, back) == original, "a DN does not come back");
    }

    void checkMembers(const Member* original, const Member* converted) const {
        for (; original != nullptr; original = original->next, converted = converted->next) {
            require(converted != nullptr, "a member is missing");
            require(std::string(original->name) == converted->name, "a member's name changes");
            require(converted->name != original->name, "a member's name is not copied");
            check(original->value, *converted->value);
        }
        require(converted == nullptr, "a member too many");
    }

    const IdMappings& mMappings;
    Direction mDirection;
};

int released = 0;

void countRelease(OrvMoAttributeValueContainer_3*) {
    ++released;
}

void countMultiRelease(OrvMoAttributeValueContainer_3**) {
    ++released;
}

OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    return OrvOk;
}

/// What a client gets is given back once, with the producer's own record.
void releaseOne(OrvMoAttributeValueContainer_3* original, const ValueConversion& conversion) {
    auto* const view = new ConvertedResultData(&countRelease, original);
    conversion.transformContainer(*view, IdMappings::ToExternal);
    released = 0;
    ConvertedResultData::releaseFunc(view);
    require(released == 1, "a result is not released once");
}

void releaseMany(OrvMoAttributeValueContainer_3* original, const ValueConversion& conversion) {
    OrvMoAttributeValueContainer_3* originals[] = {original, original, nullptr};
    auto** const views = static_cast<OrvMoAttributeValueContainer_3**>(
        std::calloc(std::size(originals), sizeof(OrvMoAttributeValueContainer_3*)));
    for (int at = 0; at < 2; ++at) {
        auto* const view = new ConvertedResultData(nullptr, original);
        conversion.transformContainer(*view, IdMappings::ToExternal);
        if (at == 0) {
            view->setOriginalMany(&countMultiRelease, originals);
        }
        views[at] = view;
    }
    released = 0;
    ConvertedResultData::multiReleaseFunc(views);
    require(released == 1, "results are not released once");
}

void convertNamed(OrvMoAttributeValueContainer_3* original, const IdMappings& mappings,
                  const ValueConversion& conversion) {
    OrvMoNamedAttributeValueContainer_3 named{"name", *original};
    OrvMoNamedAttributeValueContainer_3* const attributes[] = {&named, &named, nullptr};
    ConversionMemory memory;
    auto** const converted =
        conversion.toInternal(attributes, memory, [](const auto& /*converted*/) {});
    const Judge<Version3> judge(mappings, IdMappings::ToInternal);
    for (int at = 0; at < 2; ++at) {
        require(converted[at]->name == named.name, "the name is not the client's");
        judge.check(original, converted[at]->value);
    }
    require(converted[2] == nullptr, "an attribute too many");
}

void runVersion3(ByteSource& source, const IdMappings& mappings) {
    const ValueConversion conversion(mappings);
    RecordMaker<Version3> maker(source);
    OrvMoAttributeValueContainer_3* const original = maker.container();
    const std::string before = dumped(*original);
    for (const Direction direction : {IdMappings::ToInternal, IdMappings::ToExternal}) {
        ConvertedResultData view(nullptr, original);
        conversion.transformContainer(view, direction);
        Judge<Version3>(mappings, direction).check(original, view);
    }
    releaseOne(original, conversion);
    releaseMany(original, conversion);
    convertNamed(original, mappings, conversion);
    require(dumped(*original) == before, "the original is written to");
}

void runVersion1(ByteSource& source, IdMappings& mappings) {
    OrvOamSpiTransaction_1 table{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    TransactionData transactions(&resource);
    transactions.transaction = &table;
    MoImpl service(mappings, transactions);
    RecordMaker<Version1> maker(source);
    OrvMoAttributeValueContainer* const original = maker.container();
    const std::string before = dumped(*original);
    for (const Direction direction : {IdMappings::ToInternal, IdMappings::ToExternal}) {
        const auto* const converted = service.transformContainer(original, direction, 1);
        Judge<Version1>(mappings, direction).check(original, *converted);
    }
    require(dumped(*original) == before, "the original is written to");
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isConfigured = [] {
        Orv::MeIdTranslator::instance()->configure("north", "");
        return true;
    }();
    ByteSource source(data, size);
    IdMappings mappings(Orv::MeIdTranslator::instance());
    if (isConfigured && source.byte() % 2 == 0) {
        runVersion3(source, mappings);
    } else {
        runVersion1(source, mappings);
    }
    return 0;
}
