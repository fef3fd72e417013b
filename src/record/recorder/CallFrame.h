// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_CALLFRAME_H
#define ORV_RECORD_RECORDER_CALLFRAME_H

#include "RecordFile.h"
#include "Recording.h"

#include <exception>
#include <string>

namespace OrvRecord {

/// Where the recording of this process goes.
RecordFile& recordFile();

/// What happened outside of calls and belongs before the next one: how EventWriter writes it.
void noteBeforeNextCall(const std::string& events);

/// One call that goes through the recorder, from its begin to its end.
///
/// Recorded is what passes the border of the component: a call of the component from outside, also
/// from inside a call that the component made, and a call that the component makes. What others
/// call of each other (an interceptor the router) is none of it.
///
/// A call from outside that is in no other is written to the file when it ends, with all that was
/// called from inside it; of a long one, a part whenever enough has come together. Nothing here
/// throws by itself.
///
/// Threads: one.
class CallFrame {
public:
    explicit CallFrame(const CallName& name) noexcept;
    CallFrame(const CallFrame&) = delete;
    CallFrame& operator=(const CallFrame&) = delete;
    ~CallFrame();

    bool isRecorded() const { return mIsRecorded; }
    std::uint64_t call() const { return mCall; }

    /// \p write writes what goes in. This and the next two do nothing if the call is not recorded.
    template <class Write>
    void begin(const Write& write) noexcept {
        if (!mIsRecorded) {
            return;
        }
        guarded([&] {
            std::string values;
            ByteWriter bytes(values);
            write(bytes);
            writeBegin(values);
        });
    }

    /// \p write writes what came out.
    template <class Write>
    void end(std::uint32_t code, const Write& write) noexcept {
        if (!mIsRecorded) {
            return;
        }
        guarded([&] {
            std::string values;
            std::string handles;
            ByteWriter valueBytes(values);
            ByteWriter handleBytes(handles);
            write(Outcome<ByteWriter>{valueBytes, handleBytes});
            writeEnd(code, values, handles);
        });
    }

    /// Calls \p callee, and returns what it returns. What it throws is recorded, and goes on.
    template <class Callee>
    auto watch(const Callee& callee) {
        try {
            return callee();
        } catch (const std::exception& failure) {
            thrown(failure.what());
            throw;
        } catch (...) {
            thrown(nullptr);
            throw;
        }
    }

private:
    /// \p what: null if it is no std::exception.
    void thrown(const char* what) noexcept;

    struct Buffers;
    class BufferPool;
    struct Thread;
    template <class Object>
    friend Object& lasting();

    static Thread& thread();
    /// Those of the call that is recorded.
    static Buffers& buffers();

    void writeBegin(std::string_view values);
    static void writeEnd(std::uint32_t code, std::string_view values, std::string_view handles);
    /// Writes a part of the call if it has become long.
    static void holdLittle();
    /// \p end: the number of its end, or kGoesOn.
    static void writeBlock(std::uint64_t end);

    template <class Work>
    static void guarded(const Work& work) noexcept {
        try {
            work();
        } catch (const std::exception&) {
            recordFile().stop("there is no memory");
        }
    }

    CallName mName;
    bool mIsRecorded = false;
    bool mIsOutermost = false;
    std::uint64_t mCall = 0;
};

}

#endif
