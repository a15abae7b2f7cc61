// pfsdoc batch: a program of its own, pfsdoc-batch, which loads more than one document is
// worth. It stands beside this one, or where programs stand that only programs call. Test:
// tests/batch/run/batch_test.cpp.
#pragma once

namespace pfsdoc::cli {

// Goes on as pfsdoc-batch with these arguments, the first of which is the command's name. Comes
// back only where that fails, with the exit code.
int become_batch(char **arguments);

} // namespace pfsdoc::cli
