// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Stands for the tests when the headers that they share are compiled.
int main() {
    return 0;
}
