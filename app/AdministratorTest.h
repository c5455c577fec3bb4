// SPDX-License-Identifier: MIT
#pragma once

// Non-zero when the token in force has the built-in Administrators group enabled: a group that is present
// for denial only does not count, and neither does a test that fails at any step.
int IsUserAdministrator();
