/* SPDX-License-Identifier: MIT
   Copyright (c) 2026 The ScanReader developers

   Who has a slab of blocks, Source/Bss/Bss_Tsk/BSS_TSK_BlockSlab.h and BSS_TSK_BlockPool.cpp; the parts are named as
   the functions there. Threads take the one slab from the store, hand its blocks out, take back what has come back or
   let it go; others give blocks back. Claimed, of every order in which the steps can come: no block is handed out
   while it is out, nobody has the slab but one, and when nothing moves any more it is not forgotten: it is in the
   store, unless fewer of its blocks are free than are worth it.

   One step here is one atomic access there; the word's order is all there is, as it alone decides. Taking the slab
   from the store is one step: that is done under a lock. There are 2.5 million states, which take a second or two.

   Each of these changes a step, and must make the check fail:
   NOT_ONCE   GiveBack: whoever finds enough of the blocks free brings the slab to the store, not the first alone
   NO_COMPARE LetGo: gives the slab up whatever has come back since it looked
   NO_TAKE    TakeBack: the blocks that are taken stay in the word */

#define BLOCKS 4
#define WORTH 2
#define HELD 1 /* blocks are the bits above */
#define ALL 30
#ifndef TURNS
#define TURNS 4 /* that blocks are handed out in, of each thread */
#endif

#define Number(set) ((((set) >> 1) & 1) + (((set) >> 2) & 1) + (((set) >> 3) & 1) + (((set) >> 4) & 1))
#define IsWorthIt(set) (Number(set) >= WORTH)

byte word = HELD | ALL;
bit inStore = 1;
byte holders; /* threads that may allocate from it: for the claim */
byte out;     /* blocks that are handed out and not on their way back */

inline Give()
{
    atomic { assert(!inStore && !holders); inStore = 1 }
}

inline TakeBack()
{
#ifdef NO_TAKE
    free = word & ALL
#else
    atomic { free = word & ALL; word = HELD }
#endif
}

inline HandOut()
{
    atomic {
        block = free & (~free + 1);
        free = free & ~block;
        assert(!(out & block));
        out = out | block;
        block = 0
    }
}

proctype Allocator()
{
    byte free, seen, block, turns;
    do
    :: turns < TURNS ->
end_store:
        atomic { inStore -> inStore = 0; holders++; assert(holders == 1); turns++ }
        TakeBack();
again:
        do
        :: free -> HandOut()
        :: free -> atomic { word = word | free; free = 0 }; break /* GiveUp: all that is left at once */
        :: else -> break
        od;
        /* LetGo */
        seen = word;
        do
        :: IsWorthIt(seen) ->
            if
            :: turns < TURNS -> turns++; TakeBack(); goto again
            :: holders--; Give(); break /* what a thread without a place does */
            fi
        :: else ->
            atomic {
#ifdef NO_COMPARE
                word = word & ~HELD; holders--; break
#else
                if
                :: word == seen -> word = seen & ~HELD; holders--; break
                :: else -> seen = word
                fi
#endif
            }
        od
    :: else -> break
    od
}

proctype Freer()
{
    byte block, before;
end_blocks:
    do
    :: atomic { out -> block = out & (~out + 1); out = out & ~block }
        atomic { before = word; word = word | block };
        if
#ifdef NOT_ONCE
        :: !(before & HELD) && IsWorthIt(before | block) ->
#else
        :: !(before & HELD) && !IsWorthIt(before) && IsWorthIt(before | block) ->
#endif
            word = word | HELD;
            Give()
        :: else
        fi;
        atomic { block = 0; before = 0 }
    od
}

/* When nothing moves any more: everybody waits for the store or for blocks. */
active proctype Claim()
{
    timeout;
    assert(!out && !holders);
    assert(inStore == (word & HELD));
    assert(inStore || !IsWorthIt(word))
}

init
{
    atomic { run Allocator(); run Allocator(); run Freer(); run Freer() }
}
