#pragma once

// JSON written inline in tests: JSON({"a": 1}) is the text {"a": 1}. Raw
// string literals would do, but moc misreads those that hold quotes.
#define JSON(...) #__VA_ARGS__
