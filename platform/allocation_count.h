// Bookkeeping shared by both memory ports: live blocks and the injected allocation failure.
#pragma once

// Counts one allocation attempt; true when the test hook asked this one to fail.
bool AllocationShouldFail();
// Records a block made or freed.
void CountBlockAllocated();
void CountBlockFreed();
