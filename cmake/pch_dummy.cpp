// Anchor for the shared precompiled header of the tests.
