#pragma once

/// The one function that the application library exports: runs the application, with its window,
/// until it is ended. Called once, on the main thread.
///
/// @return the process's exit status: 0, or 1 when there is no display.
extern "C" __attribute__((visibility("default"))) int
subscriptionHelperApplicationMain(int argumentCount, char** arguments);
