#pragma once

/// What each campaign plants, to be found: one mutant of it survives, others are never come to.
namespace Planted {

/// Asked at the beginning of each test, which fails unless it is true.
[[gnu::visibility("default")]] bool holds();
[[gnu::visibility("default")]] int uncalled(int a);

}  // namespace Planted
