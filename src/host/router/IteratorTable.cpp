// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "IteratorTable.h"

#include <utility>

namespace OrvHost {

IteratorHandle IteratorTable::add(std::shared_ptr<RouterIterator> iterator) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mIterators.emplace(mLast + 1, std::move(iterator));
    return ++mLast;
}

std::shared_ptr<RouterIterator> IteratorTable::find(IteratorHandle handle) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mIterators.find(handle);
    return found == mIterators.end() ? nullptr : found->second;
}

bool IteratorTable::erase(IteratorHandle handle) {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mIterators.erase(handle) > 0;
}

void IteratorTable::erase(const std::vector<IteratorHandle>& handles) {
    const std::lock_guard<std::mutex> guard(mMutex);
    for (const IteratorHandle handle : handles) {
        mIterators.erase(handle);
    }
}

}
