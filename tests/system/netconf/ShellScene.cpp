// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ShellScene.h"

#include "base/UnixAddress.h"
#include "cli/remote/Frame.h"

#include <array>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

#include <sys/socket.h>

namespace OrvHost {

namespace {

std::filesystem::path newFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "shells.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("there is no folder for a socket");
    }
    return name;
}

}

ShellClient::ShellClient(const std::string& path, const ShellLook& look)
    : mSocket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const UnixAddress address(path);
    if (connect(mSocket.get(), reinterpret_cast<const sockaddr*>(&address.get()),
                sizeof(sockaddr_un)) != 0) {
        mHasEnded = true;
        return;
    }
    const std::string hello = frameBytes(FrameHello, toBody(ShellHello{kShellProtocol, look, {}}));
    ::send(mSocket.get(), hello.data(), hello.size(), MSG_NOSIGNAL);
    answer();
}

std::string ShellClient::ask(const std::string& line) {
    send(line);
    return answer();
}

void ShellClient::send(const std::string& line) {
    const std::string bytes = frameBytes(FrameLine, toBody(ScriptLine{line, ""}));
    ::send(mSocket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

void ShellClient::cancel(int number) {
    const std::string bytes = frameBytes(FrameCancel, std::to_string(number));
    ::send(mSocket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

std::string ShellClient::answer() {
    FrameReader reader(kLongestAnswer);
    std::string text;
    std::array<char, 65536> buffer{};
    for (;;) {
        while (const auto frame = reader.next()) {
            switch (frame->kind) {
            case FrameOut:
            case FrameErr:
            case FrameBye:
                text += frame->body;
                break;
            default: // the end of an answer
                return text;
            }
        }
        const ssize_t size = recv(mSocket.get(), buffer.data(), buffer.size(), 0);
        if (size <= 0) {
            mHasEnded = true;
            return text;
        }
        reader.add({buffer.data(), static_cast<std::size_t>(size)});
    }
}

ShellScene::ShellScene() : mFolder(newFolder()), mLog(std::cerr, LogFormat::Text) {
    path = (mFolder / "shell").string();
}

ShellScene::~ShellScene() {
    shells.reset();
    std::filesystem::remove_all(mFolder);
}

void ShellScene::startShells() {
    const auto commit = [this](const std::string& user, const std::function<void()>& work) {
        dispatcher.commitBeside(user, work);
    };
    shells = std::make_unique<ShellServer>(
        path,
        ShellServices{host, mLog, [this](Session& session) { prepare(session); }, commit, {}});
}

}
