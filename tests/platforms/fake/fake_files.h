// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_FAKE_FILES_H
#define TESTS_FAKE_FILES_H

namespace fake {

// Empties this process's directory of files.
void ResetFiles();

} // namespace fake

#endif
