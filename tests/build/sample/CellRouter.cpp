// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CellRouter.h"

#include <cstddef>
#include <memory>

namespace {

CellRouter* theRouter = nullptr;

}

// A value in one block with its text. States are values of an enumeration; a text that is not there
// makes a value without slots.
struct CellRouter::Value : OrvMoAttributeValueContainer_3 {
    explicit Value(const std::string* known) : OrvMoAttributeValueContainer_3{} {
        type = OrvMoAttributeTypeEnumeration_3;
        if (known != nullptr) {
            text = *known;
            slot.string = text.c_str();
            count = 1;
            values = &slot;
        }
    }
    std::string text;
    OrvMoAttributeValue_3 slot = {};
};

CellRouter::CellRouter() {
    theRouter = this;
    table3.getMoAttribute = &getMoAttribute;
    table3.getMoAttributes = &getMoAttributes;
    table3.setMoAttribute = &setMoAttribute;
    table3_1.setMoAttributes = &setMoAttributes;
}

CellRouter::~CellRouter() {
    theRouter = nullptr;
}

void CellRouter::put(const std::string& dn, const std::string& attribute, const std::string& text) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mTexts[{dn, attribute}] = text;
}

std::vector<std::string> CellRouter::writes() {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mWrites;
}

CellRouter::Value* CellRouter::read(const char* dn, const char* attrName) {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mTexts.find({dn, attrName});
    return new Value(found != mTexts.end() ? &found->second : nullptr);
}

OrvReturnT CellRouter::getMoAttribute(unsigned long, const char* dn, const char* attrName,
                                      OrvMoAttributeValueResult_3* result) {
    if (theRouter->mCode == OrvOk) {
        result->container = theRouter->read(dn, attrName);
        result->release = &releaseOne;
        ++theRouter->mUnreleased;
    }
    return theRouter->mCode;
}

OrvReturnT CellRouter::getMoAttributes(unsigned long, const char* dn, const char** attrNames,
                                       OrvMoAttributeValuesResult_3* result) {
    if (theRouter->mCode != OrvOk) {
        return theRouter->mCode;
    }
    std::size_t count = 0;
    while (attrNames[count] != nullptr) {
        ++count;
    }
    auto* containers = new OrvMoAttributeValueContainer_3*[count + 1];
    for (std::size_t index = 0; index < count; ++index) {
        containers[index] = theRouter->read(dn, attrNames[index]);
    }
    containers[count] = nullptr;
    result->containers = containers;
    result->release = &releaseMany;
    ++theRouter->mUnreleased;
    return OrvOk;
}

void CellRouter::releaseOne(OrvMoAttributeValueContainer_3* container) {
    delete static_cast<Value*>(container);
    --theRouter->mUnreleased;
}

void CellRouter::releaseMany(OrvMoAttributeValueContainer_3** containers) {
    for (std::size_t index = 0; containers[index] != nullptr; ++index) {
        delete static_cast<Value*>(containers[index]);
    }
    delete[] containers;
    --theRouter->mUnreleased;
}

OrvReturnT CellRouter::setMoAttribute(unsigned long, const char* dn, const char* attrName,
                                      const OrvMoAttributeValueContainer_3* value) {
    const std::lock_guard<std::mutex> guard(theRouter->mMutex);
    const char* const text = value->values == nullptr ? nullptr : value->values[0].string;
    theRouter->mWrites.push_back(std::string(dn) + " " + attrName + "=" +
                                 (text == nullptr ? "(null)" : text));
    return theRouter->mCode;
}

OrvReturnT CellRouter::setMoAttributes(unsigned long, const char* dn,
                                       VekMoNamedAttributeValueContainer_3** attributes) {
    const std::lock_guard<std::mutex> guard(theRouter->mMutex);
    for (std::size_t index = 0; attributes[index] != nullptr; ++index) {
        theRouter->mWrites.push_back(std::string(dn) + " " + attributes[index]->name);
    }
    return theRouter->mCode;
}
