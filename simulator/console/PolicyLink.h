#pragma once

namespace Simulator
{
// A Wine prefix makes Wow6432Node\Policies a symbolic link to Policies: the policy locations of the 32-bit view are
// then the native ones. This makes it a key of its own, so that each of the four locations can be seen to be searched.
// Nothing happens when it is one already. Throws UsageError.
void SeparatePolicyViews();
} // namespace Simulator
