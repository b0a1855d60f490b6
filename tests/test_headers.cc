// Carries the headers that all tests have in common.
