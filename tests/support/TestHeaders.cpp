// Holds the precompiled headers of the tests and has nothing of its own.
