// Whether a test program may run here: tests delete keys and folders.
#pragma once

namespace test {

// KOR_TEST_SANDBOX is set, and this is Wine, whose prefix somebody made for that, or Windows
// Sandbox. Anywhere else KOR_TEST_EXPENDABLE has to be set, too.
bool MayChangeThisMachine();

} // namespace test
