#pragma once

#include "app/Options.h"

/// The one function that the application library exports: runs the application, with its window,
/// until it is ended, or prints the results of a check. Called once, on the main thread.
///
/// @return the process's exit status: 0, or 1 if the display is missing or a check failed.
extern "C" __attribute__((visibility("default"))) int
subscriptionHelperApplicationMain(const app::Options& options, int argumentCount, char** arguments);
