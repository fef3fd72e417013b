// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_BUILD_SAMPLE_CELLROUTER_H
#define ORV_TESTS_BUILD_SAMPLE_CELLROUTER_H

#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "VekOamSpiManagedObject_3_1.h"

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

/// A router that knows texts: one for each pair of an internal DN and an attribute. What it hands
/// out is counted until it is released.
///
/// A table function is handed no object, so one router lives at a time. Threads: any.
class CellRouter {
public:
    CellRouter();
    ~CellRouter();
    CellRouter(const CellRouter&) = delete;
    CellRouter& operator=(const CellRouter&) = delete;

    void put(const std::string& dn, const std::string& attribute, const std::string& text);
    /// From here on every operation answers \p code.
    void refuse(OrvReturnT code) { mCode = code; }

    std::vector<std::string> writes();
    int unreleased() const { return mUnreleased; }

    OrvOamSpiManagedObject_1 table1 = {};
    OrvOamSpiManagedObject_3 table3 = {};
    VekOamSpiManagedObject_3_1 table3_1 = {};

private:
    struct Value;

    static OrvReturnT getMoAttribute(unsigned long, const char* dn, const char* attrName,
                                     OrvMoAttributeValueResult_3* result);
    static OrvReturnT getMoAttributes(unsigned long, const char* dn, const char** attrNames,
                                      OrvMoAttributeValuesResult_3* result);
    static OrvReturnT setMoAttribute(unsigned long, const char* dn, const char* attrName,
                                     const OrvMoAttributeValueContainer_3* value);
    static OrvReturnT setMoAttributes(unsigned long, const char* dn,
                                      VekMoNamedAttributeValueContainer_3** attributes);
    static void releaseOne(OrvMoAttributeValueContainer_3* container);
    static void releaseMany(OrvMoAttributeValueContainer_3** containers);

    Value* read(const char* dn, const char* attrName);

    std::atomic<OrvReturnT> mCode{OrvOk};
    std::atomic<int> mUnreleased{0};
    std::mutex mMutex; ///< guards all below
    std::map<std::pair<std::string, std::string>, std::string> mTexts;
    std::vector<std::string> mWrites;
};

#endif
