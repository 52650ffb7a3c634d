/* SPDX-License-Identifier: MIT
   Copyright (c) 2026 The ScanReader developers

   The wait for any of several events, Source/Bss/Bss_Hal/BSS_HAL_Waitable_Posix.cpp and BSS_HAL_WaitSlot_Posix.cpp;
   the parts are named as the functions there. Threads wait for an auto-reset and a manual-reset event at once,
   without limit, with one, or until they are ended by force; others set, reset, pulse or close one of the events.
   Claimed, of every order in which the steps can come: when nothing moves any more, nobody sleeps who was released
   or whose event is signalled or closed; each signal of the auto-reset event that was not reset has ended one
   wait or is still there; nobody is in the list of a manual-reset event that was pulsed.

   One step here is one atomic access there; those are sequentially consistent, so order is all there is. What a
   thread does to what only it sees, or what the lock guards, goes with the step before it. Not modelled:
   descriptors and the sleep in poll, a slot that is used again, a second wait of a thread, and the order of the
   list: any thread in it may be the one that is released, there it is the first.

   With two threads of each sort there are 4 million states, which take 5 seconds and 400 MB.

   Each of these leaves a step out, and must make the check fail:
   NO_RECHECK   Enter: the look at the event, once the thread is in its list
   NO_FLAG      Set: the look at the flag that says that there is a list
   NO_COMPARE   SleepOnWord: the kernel's look at the word before it puts the thread to sleep
   NO_HAND_ON   AbandonWait: handing on the signal that an ended thread had been released with */

#ifndef WAITERS
#define WAITERS 2
#endif
#ifndef CHANGERS
#define CHANGERS 2
#endif
#define EVENTS 2
#define AUTO 0
#define MANUAL 1
#define PATIENT 0
#define PRESSED 1 /* may come to its limit, and may be ended by force */
#define ACTIONS 8

#define OPEN 1 /* of a slot's word */
#define SIGNALLED 2
#define WAITED 4

byte word[EVENTS] = OPEN;
byte list[EVENTS];     /* a bit for each thread in it; guarded by the lock */
bit lock;
bit released[WAITERS]; /* the word that the thread sleeps on */
bit handOn[WAITERS];
bit asleep[WAITERS];   /* the kernel's */
byte given, taken;     /* signals of the auto-reset event: for the claim, not in the code */

inline Lock() { d_step { !lock -> lock = 1 } }
inline Unlock() { lock = 0 }

inline Give(e) { given = given + (e == AUTO && !(word[e] & SIGNALLED)); word[e] = word[e] | SIGNALLED }
inline Clear(e) { given = given - (e == AUTO && (word[e] & SIGNALLED)); word[e] = word[e] & ~SIGNALLED }

inline TakeSignal(e)
{
    got = false;
    seen = word[e];
    do
    :: (seen & OPEN) && (seen & SIGNALLED) && e == MANUAL -> got = true; break
    :: (seen & OPEN) && (seen & SIGNALLED) && e == AUTO ->
        atomic {
            if
            :: word[e] == seen -> word[e] = seen & ~SIGNALLED; taken++; got = true; break
            :: else -> seen = word[e]
            fi
        }
    :: else -> break
    od
}

/* Inside a d_step. The flags of the two words go together: nobody looks at both without the lock. */
inline LeaveLists(w)
{
    k = 0;
    do
    :: k < EVENTS ->
        list[k] = list[k] & ~(1 << w);
        if
        :: !list[k] -> word[k] = word[k] & ~WAITED
        :: else
        fi;
        k++
    :: else -> break
    od;
    k = 0
}

inline Release(w, bHandOn)
{
    d_step { handOn[w] = bHandOn; given = given + bHandOn; LeaveLists(w) };
    released[w] = 1
}
inline Wake(w) { asleep[w] = 0 }

inline ReleaseAll(e)
{
    j = 0;
    do
    :: j < WAITERS && (list[e] & (1 << j)) -> Release(j, 0); Wake(j); j++
    :: j < WAITERS && !(list[e] & (1 << j)) -> j++
    :: else -> break
    od;
    j = 0;
    assert(!list[e])
}

inline SetWaited(e, isPulse)
{
    atomic { Lock(); seen = word[e] };
    if
    :: !(seen & OPEN) -> Unlock()
    :: else ->
        if
        :: isPulse -> d_step { Clear(e) }
        :: !isPulse && (e == MANUAL || !list[e]) -> d_step { Give(e) }
        :: else
        fi;
        if
        :: e == AUTO && list[e] ->
            if
            :: list[e] & 1 -> j = 0
            :: list[e] & 2 -> j = 1
            fi;
            Release(j, !isPulse);
            Unlock();
            d_step { Wake(j); j = 0 }
        :: e == MANUAL && list[e] -> ReleaseAll(e); Unlock()
        :: else -> Unlock()
        fi
    fi
}

inline Set(e)
{
    seen = word[e];
    do
    :: !(seen & OPEN) -> break
#ifndef NO_FLAG
    :: (seen & OPEN) && (seen & WAITED) -> SetWaited(e, false); break
#endif
    :: else ->
        atomic {
            if
            :: word[e] == seen -> Give(e); break
            :: else -> seen = word[e]
            fi
        }
    od
}

inline Reset(e)
{
    d_step { if :: word[e] & OPEN -> Clear(e) :: else fi }
}

inline Close(e)
{
    Lock();
    if
    :: word[e] & OPEN -> d_step { Clear(e); word[e] = 0 }; ReleaseAll(e)
    :: else
    fi;
    Unlock()
}

proctype Waiter(byte w, kind)
{
    byte seen, i, k, j;
    bool got, last;
look:
    i = 0;
    do
    :: i < EVENTS -> TakeSignal(i); if :: got -> goto done :: else fi; i++
    :: else -> break
    od;
    if
    :: last -> goto done /* the last look of a wait that has timed out */
    :: else
    fi;
    /* Enter */
    Lock();
    i = 0;
    do
    :: i < EVENTS ->
        atomic { seen = word[i]; word[i] = word[i] | WAITED; list[i] = list[i] | (1 << w) };
        got = !(seen & OPEN);
#ifndef NO_RECHECK
        if
        :: !got -> TakeSignal(i)
        :: else
        fi;
#endif
        if
        :: got -> d_step { LeaveLists(w) }; Unlock(); goto done
        :: else
        fi;
        i++
    :: else -> break
    od;
    Unlock();
    /* SleepOnWord */
    do
    :: released[w] -> break
    :: else ->
#ifdef NO_COMPARE
        asleep[w] = 1;
#else
        atomic { if :: !released[w] -> asleep[w] = 1 :: else fi };
#endif
end_asleep:
        if
        :: !asleep[w]
        :: kind == PRESSED -> Wake(w); break
        fi
    od;
    if
    :: kind == PRESSED -> goto ended
    :: true
    fi;
    /* Leave */
    if
    :: released[w]
    :: else -> Lock(); d_step { if :: !released[w] -> LeaveLists(w) :: else fi }; Unlock()
    fi;
    if
    :: released[w] -> taken = taken + handOn[w]; goto done
    :: else -> last = true; goto look
    fi;
ended:
    /* AbandonWait, instead of what comes after any step since Enter */
    Lock();
    d_step { LeaveLists(w) };
    Unlock();
#ifndef NO_HAND_ON
    if
    :: handOn[w] -> given--; Set(AUTO)
    :: else
    fi;
#endif
done:
    atomic { seen = 0; i = 0; got = false; last = false; kind = 0 }
}

proctype Changer(byte action)
{
    byte seen, j, k;
    if
    :: action == 0 -> Set(AUTO)
    :: action == 1 -> Set(MANUAL)
    :: action == 2 -> Reset(AUTO)
    :: action == 3 -> Reset(MANUAL)
    :: action == 4 -> SetWaited(AUTO, true)
    :: action == 5 -> SetWaited(MANUAL, true)
    :: action == 6 -> Close(AUTO)
    :: action == 7 -> Close(MANUAL)
    fi;
    atomic { seen = 0; action = 0 }
}

/* When nothing moves any more. */
active proctype Claim()
{
    byte w;
    timeout;
    assert(!lock);
    do
    :: w < WAITERS && asleep[w] ->
        assert(!released[w]);
        assert(word[AUTO] == (OPEN | WAITED) && word[MANUAL] == (OPEN | WAITED));
        w++
    :: w < WAITERS && !asleep[w] -> w++
    :: else -> break
    od;
    assert(given == taken + ((word[AUTO] & SIGNALLED) -> 1 : 0))
}

/* Every choice of threads, each once: in which order they stand does not matter. */
init
{
    byte n, which;
    atomic {
        do
        :: n < WAITERS -> run Waiter(n, which); n++
        :: which < PRESSED -> which++
        :: n == WAITERS -> break
        od;
        n = 0;
        which = 0;
        do
        :: n < CHANGERS -> run Changer(which); n++
        :: which < ACTIONS - 1 -> which++
        :: n == CHANGERS -> break
        od;
        which = 0
    }
}
