// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ThreadWorkloads.h"

#include "Values.h"

namespace OrvBench {

namespace {

using Call = ThreadWorkload::Call;

std::string mastOf(const Side& side, int number) {
    return side.dn("Mast=" + std::to_string(number));
}

Call exists(const Side& side, unsigned long txHandle, int thread) {
    return [&side, txHandle, mast = mastOf(side, thread)] {
        bool found = false;
        check(side.v3->existsMo(txHandle, mast.c_str(), &found), "existsMo");
    };
}

Call get(const Side& side, unsigned long txHandle, int thread) {
    return [&side, txHandle, mast = mastOf(side, thread)] {
        OrvMoAttributeValueResult_3 result{};
        check(side.v3->getMoAttribute(txHandle, mast.c_str(), "label", &result), "getMoAttribute");
        if (result.release != nullptr) {
            result.release(result.container);
        }
    };
}

Call step(const Side& side, unsigned long txHandle, int) {
    unsigned long long iterator = 0;
    check(side.v3->newMoIterator(txHandle, side.dn("Site=n4096").c_str(), "Antenna", &iterator),
          "newMoIterator");
    return [&side, iterator] {
        char* name = nullptr;
        check(side.v3->nextMo(iterator, &name), "nextMo");
    };
}

Call setByTurns(const Side& side, unsigned long txHandle, const std::string& mo,
                const char* attribute, const Value3& one, const Value3& other) {
    return [&side, txHandle, mo, attribute, one, other, turn = false]() mutable {
        turn = !turn;
        check(side.v3->setMoAttribute(txHandle, mo.c_str(), attribute,
                                      (turn ? one : other).container()),
              attribute);
    };
}

Call setText(const Side& side, unsigned long txHandle, int thread) {
    return setByTurns(side, txHandle, mastOf(side, thread), "label",
                      Value3::text("pier of the north"), Value3::text("pier of the south"));
}

Call setMast(const Side& side, unsigned long txHandle, int thread) {
    return setByTurns(side, txHandle, side.dn("Site=free,Antenna=" + std::to_string(thread)),
                      "mast", Value3::references({mastOf(side, 4000 + 2 * thread)}),
                      Value3::references({mastOf(side, 4001 + 2 * thread)}));
}

}

std::vector<ThreadWorkload> threadWorkloads() {
    return {
        {"existsMo", exists},
        {"getMoAttribute, text", get},
        {"nextMo", step},
        {"setMoAttribute, text", setText},
        {"setMoAttribute, bidirectional reference", setMast},
    };
}

}
