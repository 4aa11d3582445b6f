#!/bin/bash
# Starts a program that was built with a sanitizer. Kernels that shuffle addresses widely leave the
# sanitizers no room for their shadow memory; then addresses are not shuffled, where that is allowed.

# Tests of running out of memory ask for more than a sanitizer grants; that must fail as malloc does.
export ASAN_OPTIONS=allocator_may_return_null=1:detect_stack_use_after_return=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1
export TSAN_OPTIONS=allocator_may_return_null=1:halt_on_error=1:second_deadlock_stack=1
bits=$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 28)
if ((bits > 28)) && setarch -R true 2>/dev/null; then
    exec setarch -R "$@"
fi
exec "$@"
