// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Reads YANG modules as one model, and prints how many of the `list` statements with keys became
// classes, structs and nothing, one line for those with one key and one for those with several. A
// statement that is at several places counts as the first of these that it is at any place.
//
// list_fates MODULE... -- DIRECTORY...

#include "yang/schema/YangModelReader.h"
#include "yang/schema/YangSchema.h"
#include "yang/source/YangContext.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <string>

#include <libyang/libyang.h>

namespace {

using namespace OrvHost;

enum class Fate { Class, Struct, Nothing };

struct Statement {
    bool hasSeveralKeys = false;
    Fate fate = Fate::Nothing;
};

struct Walk {
    const YangSchema& schema;
    std::map<const void*, Statement> statements; ///< by the parsed statement
};

std::size_t keysOf(const lysc_node* list) {
    std::size_t count = 0;
    for (const lysc_node* child = lysc_node_child(list); child != nullptr && lysc_is_key(child);
         child = child->next) {
        ++count;
    }
    return count;
}

LY_ERR visit(lysc_node* node, void* data, ly_bool*) {
    Walk& walk = *static_cast<Walk*>(data);
    const std::size_t keys = node->nodetype == LYS_LIST ? keysOf(node) : 0;
    if (keys == 0) {
        return LY_SUCCESS;
    }
    const Fate fate = walk.schema.objectAt(node) != nullptr  ? Fate::Class
                      : walk.schema.valueAt(node) != nullptr ? Fate::Struct
                                                             : Fate::Nothing;
    Statement& statement = walk.statements[node->priv];
    statement.hasSeveralKeys = keys > 1;
    statement.fate = std::min(statement.fate, fate);
    return LY_SUCCESS;
}

void print(const Walk& walk, bool ofSeveralKeys) {
    std::map<Fate, std::size_t> counts;
    for (const auto& [parsed, statement] : walk.statements) {
        if (statement.hasSeveralKeys == ofSeveralKeys) {
            ++counts[statement.fate];
        }
    }
    std::cout << (ofSeveralKeys ? "several keys: " : "one key: ")
              << counts[Fate::Class] + counts[Fate::Struct] + counts[Fate::Nothing] << " lists, "
              << counts[Fate::Class] << " classes, " << counts[Fate::Struct] << " structs, "
              << counts[Fate::Nothing] << " nothing\n";
}

}

int main(int argc, char** argv) {
    YangModelReader reader;
    bool isDirectory = false;
    for (int at = 1; at < argc; ++at) {
        const std::string word = argv[at];
        if (word == "--") {
            isDirectory = true;
        } else if (isDirectory) {
            reader.searchIn(word);
        } else {
            reader.load(word);
        }
    }
    try {
        const YangModel model = reader.read();
        Walk walk{*model.schema, {}};
        for (const lys_module* module : model.schema->context().implementedModules()) {
            lysc_module_dfs_full(module, visit, &walk);
        }
        print(walk, false);
        print(walk, true);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
    return 0;
}
