#pragma once

/// The one function that the application library exports: runs the application, with its window,
/// until it is ended; or, where the first argument is "--check", prints what a start would find, as
/// JSON where the second is "--json". Called once, on the main thread.
///
/// @return the process's exit status: 0, or 1 when there is no display, or something that a start
/// needs is not right.
extern "C" __attribute__((visibility("default"))) int
subscriptionHelperApplicationMain(int argumentCount, char** arguments);
