// The one export mark of the library: everything else stays hidden.
#pragma once

#define TARVO_API __attribute__((visibility("default")))
