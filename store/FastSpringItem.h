#pragma once

namespace store {

/// The common base of all store records: plain value holders, filled by a parser and shared by it
/// and the caller. They are not synchronised; the parser changes nothing once it has returned one.
struct FastSpringItem {};

} // namespace store
