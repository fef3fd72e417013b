// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Users of this machine at the server's socket.

#include "netconf/server/Listener.h"
#include "netconf/server/UserTable.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

TEST(UsersTest, SystemUser_IsFoundByNameAndByNumber) {
    EXPECT_EQ(systemUser("root"), uid_t{0});
    EXPECT_EQ(systemUser("4242"), uid_t{4242});
    EXPECT_EQ(userName(0), "root");
}

TEST(UsersTest, SystemUser_NoSuchUser_IsNothing) {
    EXPECT_EQ(systemUser("nobody of this name"), std::nullopt);
    EXPECT_EQ(systemUser(""), std::nullopt);
    EXPECT_EQ(systemUser("-1"), std::nullopt);
    EXPECT_EQ(systemUser("4294967295"), std::nullopt) << "the number of no user";
    EXPECT_EQ(systemUser("4294967296"), std::nullopt);
}

TEST(UsersTest, ReadOnlyUser_WhoseNameIsNotFoundWhenHeComes_MayOnlyRead) {
    UserTable users;
    users.setReadOnly("daemon", systemUser("daemon"));
    EXPECT_TRUE(users.local(*systemUser("daemon"), "daemon").isReadOnly);
    EXPECT_TRUE(users.local(*systemUser("daemon"), "1").isReadOnly);
    EXPECT_FALSE(users.local(*systemUser("root"), "root").isReadOnly);
    EXPECT_TRUE(users.named("daemon").isReadOnly);
    EXPECT_FALSE(users.named("root").isReadOnly);
}

}
}
