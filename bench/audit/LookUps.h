#pragma once

#include <cstddef>

// Looking a key up among 10,000, half of the time one that is there. Each call of a subject does that many look-ups.
namespace LookUps
{
// Fills both maps. Before the first look-up.
void Prepare();

void InKeyMap(std::size_t times);
void InBareMap(std::size_t times);
} // namespace LookUps
