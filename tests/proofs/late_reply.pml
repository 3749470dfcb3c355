/* SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
 * SPDX-License-Identifier: MIT
 *
 * No value ever stands under another's name: the host's exchange loop, the line and the PLC.
 *
 * The host reads two registers, 0 and 1, in any order; their values may change at any time. A reply
 * carries a value but no name: the model knows whose it is, the host does not. The line is a queue,
 * because the PLC answers in order. In each wait of the host something on the line arrives, or the
 * wait passes: what is assumed of times is said by which waits may pass.
 *
 * Run with -DDROP=NAME one assumption or rule is left out; docs/late-replies.md explains them.
 */

#define nobody 2

#ifdef RESTLESS  /* for traces, in which something always goes wrong */
#define inVain 3
#else
#define inVain 1
#endif

mtype = { nothing, data, refusal, damaged, cut, acknowledge };

/* whose reply it is, its value, whether it is a second copy */
chan line = [6] of { mtype, byte, bit, bit };

bool answersEnq;  /* this PLC */
bool calm;        /* from now on nothing goes wrong */
bool taken, clean, atOnce, noise, heard, isSilent, early, bad, answered, everAnswered;
mtype kind, first;
byte wanted, lastWanted = nobody, name, tookName, length, unanswered, silences;
bit value, copy, tookValue, lastValue;

#ifndef DROP
#define DROP 0
#endif
#define holds(what) (!((DROP) & what))

/* Assumptions: */
#define inOrder 1          /* the PLC answers in order */
#define copyInTime 2       /* a second copy follows within four usual response times; */
#define copyWithoutLoss 4  /* when later than a moment, the reply to the next frame is not lost */
#define strayIsQuick 8     /* behind noise or a late copy, the PLC's own reply is not slow */
#define slowHasEnd 16      /* where ENQ gets no ACK, a reply comes within two time-outs */

/* Rules: */
#define momentBefore 32    /* an early reply, or what comes in the moment before, does not count */
#define waitForAnother 64  /* a reply that repeats the one before counts only if none follows */
#define alsoSame 128       /* also when it is to the same request */
#define drained 256        /* after a bad reply the line is drained */
#define alsoNak 512        /* also after NAK, */
#define alsoOther 1024     /* and after another reply */
#define enquired 2048      /* after a time-out ENQ is sent */
#define cleared 4096       /* and another time-out is waited */
#define inFull 8192        /* also when something comes in it */
#define earlyAsks 16384    /* an early reply is settled as a time-out is */

/* The waits of the host, and when they may pass. */
mtype = { moment, reply, with, rest, another, quiet, lateQuiet, enquiry, clearing };

#define isEmpty (len(line) == 0)
#define noCopyDue (!holds(copyInTime) || !line?[_, _, _, 1])
#define orderClears (holds(enquired) -> answered : answersEnq)

#ifdef WRITES  /* two writes instead: a good reply is one character, the same as to ENQ */
#define whole 1
#define isAck (kind == data || kind == acknowledge)
#define isGood isAck
#define isSame true
#define isClear isEmpty
#else
#define whole 20
#define isAck (kind == acknowledge)
#define isGood (kind == data)
#define isSame (tookValue == lastValue)
#define isClear (orderClears || isEmpty)
#endif

#define mayPass(wait) (!(calm && !isEmpty) && ( \
    wait == moment || wait == rest || \
    wait == another && (isEmpty || line?[_, _, _, 1] || !holds(strayIsQuick)) || \
    wait == quiet && (isEmpty || !holds(strayIsQuick)) && noCopyDue || \
    wait == clearing && (isClear || !holds(slowHasEnd) || heard && !holds(inFull)) && noCopyDue || \
    (wait == reply || wait == lateQuiet || wait == enquiry) && noCopyDue))

inline listen(wait)
{
    if
    :: !isEmpty ->
       do
       :: !holds(inOrder) -> line?kind, name, value, copy; line!kind, name, value, copy
       :: line?kind, name, value, copy; break
       od
    :: !calm && !noise -> noise = true; kind = damaged; name = nobody; value = 0; copy = 0
    :: mayPass(wait) -> kind = nothing; name = nobody; value = 0; copy = 0
    fi;
    isSilent = isSilent && kind == nothing;
    printf("> %e %e %d\n", wait, kind, value)
}

/* The PLC, and what the line does to its replies. */

inline put(what, whose)
{
    if
    :: line!what, whose, value, 0
    :: !calm -> line!what, whose, value, 0; line!what, whose, value, 1
    fi
}

inline answerRequest()
{
    if
    :: value = 0; put(data, wanted)
    :: value = 1; put(data, wanted)
    :: !calm -> put(refusal, nobody)
    :: !calm -> put(damaged, nobody)
    :: !calm -> put(cut, nobody)
    :: !calm && (isEmpty || atOnce || !holds(copyWithoutLoss) || !holds(momentBefore))
    fi
}

inline answerEnquiry()
{
    value = 0;
    if
    :: answersEnq -> put(acknowledge, nobody)
    :: !answersEnq || !calm
    fi
}

/* The host. */

inline drain(wait)
{
    heard = false;
    do
    :: listen(wait);
       if
       :: kind != nothing -> heard = true
       :: else -> break
       fi
    od
}

inline enquire()
{
    printf("> enquire\n");
    answerEnquiry();
    do
    :: listen(enquiry);
       if
       :: kind == nothing -> unanswered = (everAnswered || unanswered == inVain -> unanswered : unanswered + 1); break
       :: isAck -> answered = true; everAnswered = true; unanswered = 0; break
       :: else
       fi
    od
}

/* Some PLCs never answer ENQ; one that is silent may have been off. */
#define worthAsking (everAnswered || silences == inVain || unanswered < inVain)

inline settleTimeout()
{
    if
    :: holds(drained) -> drain(lateQuiet)
    :: else
    fi;
    if
    :: holds(enquired) && worthAsking -> enquire()
    :: else
    fi;
    if
    :: holds(cleared) -> drain(clearing)
    :: else
    fi
}

inline settleBad()
{
    if
    :: holds(drained) -> drain(quiet)
    :: else
    fi
}

inline count()
{
    if
    :: kind == data || kind == damaged -> length = length + whole
    :: kind == cut -> length = length + whole - 1
    :: kind == refusal || kind == acknowledge -> length++
    :: kind == nothing
    fi
}

inline receive()
{
    listen(reply);
    if
    :: atOnce && kind != nothing -> early = true; printf("> early\n")
    :: !atOnce || kind == nothing || !copy || !isEmpty || !holds(copyWithoutLoss)
    fi;
    first = kind;
    tookName = name;
    tookValue = value;
    bad = !isGood;
    count();
    do
    :: length < whole && kind != nothing && first != refusal -> bad = true; listen(rest); count()
    :: length >= whole && first != refusal && !isEmpty -> bad = true; listen(with); count()
    :: length >= whole || kind == nothing || first == refusal -> break
    od
}

inline take()
{
    printf("> take %d\n", tookValue);
    assert(tookName == wanted);
    lastWanted = wanted;
    lastValue = tookValue;
    taken = true;
    clean = true
}

inline judge()
{
    if
    :: first == nothing || length < whole && first != refusal -> settleTimeout()
    :: first != nothing && early && holds(earlyAsks) -> settleTimeout()
    :: first == refusal && holds(alsoNak) -> settleBad()
    :: first == refusal && !holds(alsoNak) -> clean = true
    :: else ->
       if
       :: bad -> settleBad()
       :: !bad && (early || lastWanted != nobody && isSame &&
                   (lastWanted != wanted || holds(alsoSame))) && holds(waitForAnother) ->
          drain(another);
          if
          :: heard && holds(alsoOther) -> settleBad()
          :: heard && !holds(alsoOther)
          :: else -> take()
          fi
       :: else -> take()
       fi
    fi
}

inline forget()  /* what the next exchange does not depend on */
{
    taken = false; noise = false; heard = false; early = false; answered = false; clean = false;
    isSilent = false;
    bad = false; kind = nothing; first = nothing; length = 0;
    name = nobody; tookName = nobody; value = 0; tookValue = 0; copy = 0
}

active proctype host()
{
    if
    :: answersEnq = true
    :: answersEnq = false
    fi;
    do
    :: if
       :: wanted = 0
       :: wanted = 1
       fi;
#ifdef AT_ONCE
       atOnce = clean;
#endif
       forget();
       if
       :: !atOnce && holds(momentBefore) -> drain(moment)
       :: else
       fi;
       heard = false;
       isSilent = true;
       printf("> send %d\n", wanted);
       answerRequest();
       receive();
       judge();
       silences = (!isSilent -> 0 : (silences < inVain -> silences + 1 : inVain));
#ifndef RESTLESS
       if
       :: calm = true
       :: true
       fi
#endif
    od
}

ltl progress { <>[]calm -> []<>taken }
