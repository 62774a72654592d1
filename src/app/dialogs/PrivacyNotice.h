#pragma once

// The person's wish not to see the privacy-panel notice again: the file "IgnoreLumbraDialog.txt" in their folder for
// temporary files, which lasts until they clear the check box of the notice, or that folder. Any thread.

// True when the file opens for reading.
[[nodiscard]] bool IsPrivacyNoticeSilenced();

// Makes the file; it holds the word "true". When that fails, the notice stays active.
void SilencePrivacyNotice();

// Deletes the file, when it opens for reading.
void ReactivatePrivacyNotice();
