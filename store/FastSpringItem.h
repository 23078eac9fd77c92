#pragma once

namespace store {

/// The common base of all store records. A record contains plain values, filled by a parser and
/// shared with its caller. Access is not synchronized. The parser never changes a returned record.
struct FastSpringItem {};

} // namespace store
