// A library needs a source; this one is made for the precompiled headers of the tests.
