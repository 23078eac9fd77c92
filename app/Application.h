#pragma once

#include "app/Options.h"

/// The one function that the application library exports: runs the application, with its window,
/// until it is ended; or prints what a start would find where the options ask for a check. Called
/// once, on the main thread.
///
/// @return the process's exit status: 0, or 1 when there is no display, or something that a start
/// needs is not right.
extern "C" __attribute__((visibility("default"))) int
subscriptionHelperApplicationMain(const app::Options& options, int argumentCount, char** arguments);
