// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Names.h"

#include <iterator>

namespace Fuzz {

namespace {

std::string root(Form form) {
    return std::string("ManagedElement=") + (form == Form::External ? kRootIdentity : "1");
}

/// So many steps that a recursion over them runs out of stack.
std::string longDn(ByteSource& source, Form form) {
    const std::size_t steps = 16U * (1U + source.byte());
    const std::string step = source.below(2) == 0 ? ",Part=1" : ",Unit=2";
    std::string dn = root(form);
    dn.reserve(dn.size() + steps * step.size());
    for (std::size_t count = 0; count < steps; ++count) {
        dn += step;
    }
    return dn;
}

std::string oddDn(std::size_t choice, ByteSource& source, Form form) {
    switch (choice) {
    case 0:
        return "";
    case 1:
        return "ManagedElement=other,Unit=1";
    case 2:
        return "ManagedElement";
    case 3:
        return ",Unit=1";
    case 4:
        return root(form) + ",";
    case 5:
        return root(form) + ",,Unit=1";
    case 6:
        return "Unit=1";
    case 7:
        return "Unit";
    case 8:
        return root(form) + ",Unit";
    case 9:
        return root(form) + ",Unit=";
    case 10:
        return root(form) + ",=1";
    case 11:
        return std::string("ManagedElement.x=") + kRootIdentity + ",Unit=1";
    case 12:
        return "ManagedElementX=1";
    case 13:
        return longDn(source, form);
    default:
        return source.text();
    }
}

}

std::string goodDn(std::size_t choice, Form form) {
    static constexpr const char* kSteps[] = {"",       ",Unit=", ",Unit=1,Cell=", ",Cell=",
                                             ",Site=", ",Part=", ",Unit.label=",  ",Part=1,Part="};
    const std::size_t shape = choice % std::size(kSteps);
    const std::size_t number = choice / std::size(kSteps) % 4 + 1;
    return shape == 0 ? root(form) : root(form) + kSteps[shape] + std::to_string(number);
}

std::string makeDn(ByteSource& source, Form form) {
    constexpr std::size_t kOdd = 224;
    const std::size_t choice = source.byte();
    return choice < kOdd ? goodDn(choice, form) : oddDn(choice - kOdd, source, form);
}

std::string makeClass(ByteSource& source) {
    const std::size_t choice = source.below(std::size(kClasses) + 2);
    if (choice < std::size(kClasses)) {
        return kClasses[choice];
    }
    return choice == std::size(kClasses) ? "unit" : source.text();
}

std::string makeAttribute(ByteSource& source) {
    const std::size_t choice = source.below(std::size(kAttributes) + 1);
    return choice < std::size(kAttributes) ? kAttributes[choice] : source.text();
}

std::string makeNamingValue(ByteSource& source) {
    const std::size_t choice = source.below(6);
    return choice < 5 ? std::to_string(choice + 1) : source.text();
}

std::string classOf(const std::string& dn) {
    const std::size_t comma = dn.rfind(',');
    const std::string step = comma == std::string::npos ? dn : dn.substr(comma + 1);
    return step.substr(0, step.find_first_of(".="));
}

std::string parentOf(const std::string& dn) {
    const std::size_t comma = dn.rfind(',');
    return comma == std::string::npos ? "" : dn.substr(0, comma);
}

}
