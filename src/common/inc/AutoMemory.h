// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_AUTOMEMORY_H
#define ORV_COMMON_AUTOMEMORY_H

#include <cstdlib>
#include <cstring>
#include <list>
#include <memory>

namespace Orv {

/// For authors of components; a host does not need it.
///
/// Owner list for values that cross a table: what is entered goes when this object goes, raw blocks
/// first and objects second, each in the order of entry. An owned object's destructor must
/// therefore not read a raw block of the same AutoMemory.
///
/// Nothing can be taken out or freed early. Threads: no lock; one thread at a time.
class AutoMemory {
public:
    /// Lets objects of different types stand in one list.
    class OwnedObjBase {
    public:
        OwnedObjBase() = default;
        OwnedObjBase(const OwnedObjBase&) = delete;
        OwnedObjBase& operator=(const OwnedObjBase&) = delete;
        virtual ~OwnedObjBase() = default;
    };

    /// Owns one object.
    template <class T>
    class ObjHolder : public OwnedObjBase {
    public:
        explicit ObjHolder(T* obj) : mObj(obj) {}
        ~ObjHolder() override { delete mObj; }

        T* mObj;
    };

    AutoMemory() = default;
    AutoMemory(const AutoMemory&) = delete;
    AutoMemory& operator=(const AutoMemory&) = delete;
    virtual ~AutoMemory() {
        for (void* block : mallocs) {
            std::free(block);
        }
        mallocs.clear();
        for (OwnedObjBase* object : ownedObjs) {
            delete object;
        }
        ownedObjs.clear();
    }

    /// A zeroed array of \p count elements, owned by this object; \p T needs no constructor. Null
    /// if memory is exhausted; std::bad_alloc if only the entry in the list cannot be made. With a
    /// count of 0 a pointer that is not to be read, which may be null.
    template <class T>
    T* malloc(unsigned int count) {
        // NOLINTNEXTLINE(bugprone-sizeof-expression): the elements may be pointers.
        return static_cast<T*>(enter(std::calloc(count, sizeof(T))));
    }

    /// A copy of \p text, which is not null, owned by this object. Failures: see malloc.
    char* strdup(const char* text) { return static_cast<char*>(enter(::strdup(text))); }

    /// Takes over \p object, which may be null: it is deleted with this object, or at once if it
    /// cannot be entered.
    template <class T>
    void own(T* object) {
        std::unique_ptr<T> guard(object);
        auto holder = std::make_unique<ObjHolder<T>>(nullptr);
        ownedObjs.push_back(holder.get());
        holder.release()->mObj = guard.release();
    }

private:
    // The list node may find no memory; the block must not be lost then.
    void* enter(void* block) {
        try {
            mallocs.push_back(block);
        } catch (...) {
            std::free(block);
            throw;
        }
        return block;
    }

    std::list<void*> mallocs;
    std::list<OwnedObjBase*> ownedObjs;
};

}

#endif
