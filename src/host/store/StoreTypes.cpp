// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreTypes.h"

namespace OrvHost {

std::string toText(const TransactionName& name) {
    if (name.transaction == kNoTransaction) {
        return name.author.empty() ? "another transaction" : name.author;
    }
    const std::string text = "transaction " + std::to_string(name.transaction);
    return name.author.empty() ? text : text + " of " + name.author;
}

}
