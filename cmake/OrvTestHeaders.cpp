// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The program of the target that compiles the tests' shared headers.
int main() {
    return 0;
}
