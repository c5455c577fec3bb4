// SPDX-License-Identifier: MIT
// What a start costs with the program's libraries and without its work.
int main() {}
