// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Reads a YANG module, and says whether its model has a class:  model_of_module MODULE CLASS

#include <orv/host/yang/schema/YangModelReader.h>

#include <cstdio>
#include <exception>

int main(int count, char** arguments) {
    using namespace OrvHost;
    try {
        const YangModel yang = YangModelReader().load(count > 1 ? arguments[1] : "").read();
        const bool isThere = count > 2 && yang.model.findClass(arguments[2]).has_value();
        std::puts(isThere ? "there" : "not there");
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
