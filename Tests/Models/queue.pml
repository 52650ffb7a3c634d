/* SPDX-License-Identifier: MIT
   Copyright (c) 2026 The ScanReader developers

   How a command task is told that a message waits, Source/Bss/Bss_Tsk/BSS_TSK_CommandCore.cpp,
   BSS_TSK_CommandLoop.cpp and BSS_TSK_MsgQueue.cpp; the parts are named as the functions there. Threads post while
   the queue may be full, and one may stop the task. Claimed, of every order in which the steps can come: when
   nothing moves any more and the loop sleeps, every message that was taken has been executed, the queue takes
   messages again, and nobody has asked for a stop.

   One step here is one atomic access there; those are sequentially consistent. The queue event is a flag, and the
   wait for it cannot miss it: waitable.pml shows that. Not modelled: extra events, kills, what observers and
   commands do, and the order of messages but for the stop request, which goes ahead.
   There are 2 million states, which take 5 seconds.

   Each of these changes a step, and must make the check fail:
   RESET_LAST          ExecuteMessages: the event is reset after the last look into the queue, not before the first
   NO_OVERFLOW_SIGNAL  RefuseFull: the event is not set
   NO_STOP_SIGNAL      stop: the event is not set when the request was refused */

#ifndef POSTERS
#define POSTERS 2
#endif
#define EACH 2 /* messages of one poster */
#ifndef MAXIMUM
#define MAXIMUM 2 /* messages in the queue */
#endif

byte count;             /* of messages in the queue, and of those that are about to be */
byte stack, stackStops; /* pushed, not taken yet */
bit signalled = 1;      /* as start leaves it */
bit highPushed, overflow, stopRequested;
bit stopRefused = 1; /* the last attempt to post a stop request */
bit asleep, left;
byte accepted, executed;

inline AddNewMsg(number, isStop, rc)
{
    if
    :: overflow -> rc = false
    :: else ->
        atomic {
            if
            :: count < MAXIMUM -> count++; rc = true
            :: else -> rc = false
            fi
        };
        if
        :: rc ->
            number++; /* push */
            if
            :: isStop -> highPushed = 1
            :: else
            fi;
            if
            :: signalled /* SetWaitEventIfClear */
            :: else -> signalled = 1
            fi
        :: else ->
            overflow = 1;
#ifndef NO_OVERFLOW_SIGNAL
            signalled = 1
#endif
        fi
    fi
}

proctype Poster()
{
    byte i;
    bool ok;
    do
    :: i < EACH -> AddNewMsg(stack, false, ok); d_step { accepted = accepted + ok; ok = false; i++ }
    :: else -> break
    od
}

proctype Stopper()
{
    bool ok;
    AddNewMsg(stackStops, true, ok);
    stopRefused = !ok;
    stopRequested = 1;
#ifndef NO_STOP_SIGNAL
    if
    :: !ok -> signalled = 1
    :: else
    fi
#endif
}

inline Collect()
{
    d_step { taken = taken + stack; takenStops = takenStops + stackStops; stack = 0; stackStops = 0 }
}

proctype Loop()
{
    byte taken, takenStops;
    bool ok, leave;
wait:
    if
    :: overflow ->
        if
        :: signalled
        :: else -> /* ServeTimeout */
            overflow = 0;
            if
            :: stopRequested -> goto out
            :: else -> goto wait
            fi
        fi
    :: else ->
        asleep = 1;
end_asleep:
        atomic { signalled -> asleep = 0 }
    fi;
    /* ExecuteMessages */
#ifndef RESET_LAST
    signalled = 0;
#endif
    do
    :: true ->
        /* take, or takeCollected once the loop is to end */
        if
        :: !leave && highPushed -> highPushed = 0; Collect()
        :: else
        fi;
        if
        :: !leave && !taken && !takenStops -> Collect()
        :: else
        fi;
        if
        :: !taken && !takenStops ->
            if
            :: leave || stopRequested -> goto out
            :: else -> break
            fi
        :: else
        fi;
        count--;
        if
        :: stopRequested && stopRefused -> AddNewMsg(stackStops, true, ok); stopRefused = !ok
        :: else
        fi;
        if
        :: takenStops ->
            takenStops--;
            if
            :: !leave -> Collect()
            :: else
            fi;
            leave = true
        :: else -> d_step { taken--; executed++ }
        fi
    od;
#ifdef RESET_LAST
    signalled = 0;
#endif
    goto wait;
out:
    left = 1
}

/* When nothing moves any more. */
active proctype Claim()
{
    timeout;
    assert(asleep != left);
    assert(left || accepted == executed);
    assert(left || (!overflow && !stopRequested && count == 0))
}

init
{
    byte n;
    atomic {
        do
        :: n < POSTERS -> run Poster(); n++
        :: else -> break
        od;
        run Loop();
        if
        :: run Stopper()
        :: true
        fi
    }
}
