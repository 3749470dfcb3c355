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
 * With -DINTACT nothing is damaged or sent twice, so that a restart of the host can be searched in
 * more frames. With -DDROP=NAME one assumption or rule is left out; docs/late-replies.md explains
 * them.
 */

#define nobody 2

#ifdef RESTLESS  /* for traces: something always goes wrong */
#define LINE 30  /* replies on it at most */
#define mostOwed 200
#define mostEnded 2
#define seldom 5  /* a host ends at every 32nd wait */
#define inVain 3
#else
#define LINE 6
#define seldom 0
#ifndef mostEnded
#define mostEnded 0
#endif
#ifndef mostOwed
#define mostOwed 1
#endif
#ifndef inVain
#define inVain 1
#endif
#endif

mtype = { nothing, data, refusal, damaged, cut, acknowledge };

/* whose reply it is, its value, whether it is a second copy */
chan line = [LINE] of { mtype, byte, bit, bit };

bool calm;  /* from now on nothing goes wrong */
#ifdef INTACT  /* but for what is lost or late */
#define spoils false
#else
#define spoils !calm
#endif
byte ended;  /* hosts, since the line was empty */
bool taken;

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

#define ackOnce 65536      /* the ACK to ENQ has no second copy */
#define seldomEnded 524288 /* while replies are under way a host is started again once at most */

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
#define acksAwaited 32768  /* while an ACK is owed only the same read goes out, and is confirmed */
#define alsoBad 262144     /* also a NAK or a bad reply; and ENQ is sent anew for it */
#define greeted 1048576    /* before its first frame the host sends ENQ, */
#define twice 2097152      /* until two ACKs in a row have come, */
#define alone 4194304      /* and nothing else between; */
#define quietWrite 8388608 /* a first write waits for quiet; */
#define loneReply 16777216 /* where no ACK came, the first reply counts only if nothing follows, */
#define again 33554432     /* and each frame is the first until one counts */

/* The waits of the host, and when they may pass. */
mtype = { moment, reply, with, rest, another, quiet, lateQuiet, enquiry, clearing, longEnquiry, outwait };

#define isEmpty (len(line) == 0)
#define noCopyDue (!holds(copyInTime) || !line?[_, _, _, 1])
#define orderClears (holds(enquired) -> answered : answersEnq)

#ifdef WRITES  /* two writes instead: a good reply is one character, the same as to ENQ */
#define whole 1
#define isAck (kind == data || kind == acknowledge)
#define isGood isAck
#define isSame true
#define isClear isEmpty
#define isRead false
#else
#define whole 20
#define isAck (kind == acknowledge)
#define isGood (kind == data)
#define isSame (tookValue == lastValue)
#define isClear (orderClears || isEmpty)
#define isRead true
#endif

#define isFirstWrite (!isRead && lastSent == nobody && holds(quietWrite))
#define isRepeated (isRead && wanted == lastSent)

#define mayPass(wait) (!(calm && !isEmpty) && ( \
    wait == moment || wait == rest || \
    wait == another && (unsure || !line??[_, _, _, 0] || !holds(strayIsQuick)) || \
    wait == quiet && (isEmpty || unsure || !holds(strayIsQuick)) && noCopyDue || \
    wait == clearing && (isClear || owed > 0 && holds(acksAwaited) || !holds(slowHasEnd)) && \
        noCopyDue || \
    (wait == longEnquiry || wait == outwait) && (isEmpty || !holds(slowHasEnd)) && noCopyDue || \
    wait == enquiry && (calm || owed <= mostOwed) && noCopyDue || \
    (wait == reply || wait == lateQuiet) && noCopyDue))

inline listen(wait)
{
    ended = (isEmpty -> 0 : ended);
#ifdef RESTLESS
    dice = 0;
    do
    :: dice < 5 -> dice++
    :: break
    od;
#endif
    if
    :: true
    :: !calm && wait != with && dice == seldom && (!holds(seldomEnded) || ended < mostEnded) ->
       ended++;
       goto anew
    fi;
    if
    :: !isEmpty ->
       do
       :: !holds(inOrder) -> line?kind, name, value, copy; line!kind, name, value, copy
       :: line?kind, name, value, copy; break
       od
    :: spoils && !noise -> noise = true; kind = damaged; name = nobody; value = 0; copy = 0
    :: mayPass(wait) -> kind = nothing; name = nobody; value = 0; copy = 0
    fi;
    isSilent = isSilent && kind == nothing;
    front = (front == nothing && !(isAck && (wait == enquiry || wait == outwait)) -> kind : front);
    printf("> %e %e %d\n", wait, kind, value);
    if
    :: isAck && owed > 0 -> owed--; everAnswered = true
    :: else
    fi
}

/* The PLC, and what the line does to its replies. */

inline put(what, whose)
{
    if
    :: line!what, whose, value, 0
    :: spoils && len(line) < LINE - 1 -> line!what, whose, value, 0; line!what, whose, value, 1
    fi
}

inline answerRequest()
{
    if
    :: value = 0; put(data, wanted)
    :: value = 1; put(data, wanted)
    :: spoils -> put(refusal, nobody)
    :: spoils -> put(damaged, nobody)
    :: spoils -> put(cut, nobody)
    :: !calm && (isEmpty || atOnce || !holds(copyWithoutLoss) || !holds(momentBefore))
    fi
}

inline answerEnquiry()
{
    value = 0;
    if
    :: answersEnq -> copy = !isEmpty; line!acknowledge, nobody, 0, copy
    :: answersEnq && !calm && !holds(ackOnce) && len(line) < LINE - 1 ->
       line!acknowledge, nobody, 0, !isEmpty;
       line!acknowledge, nobody, 0, 1
    :: !answersEnq || !calm
    fi
}

/* The host. */

inline drain(wait, goOn)  /* until the line is quiet */
{
    heard = false;
    listen(wait);
    do
    :: kind != nothing -> heard = true; listen(goOn)
    :: else -> break
    od
}

inline awaitAcks(wait)
{
    answered = false;
    do
    :: listen(wait);
       if
       :: kind == nothing -> break
       :: isAck -> answered = true
       :: else -> heard = true
       fi;
       if
       :: owed == 0 -> break
       :: else
       fi
    od
}

inline enquire(wait)
{
    printf("> enquire\n");
    answerEnquiry();
    owed++;
    awaitAcks(wait)
}

inline greet()
{
    acks = 0;
    lonely = false;
    owed = owed + held;
    held = 0;
    do
    :: heard = false;
       enquire(enquiry);
       if
       :: !answered -> lonely = true; held = owed; owed = 0; break
       :: answered && heard && holds(alone) -> acks = 0
       :: else -> acks++
       fi;
       if
       :: acks == (holds(twice) -> 2 : 1) -> break
       :: else
       fi
    od;
    lastSent = nobody
}

inline outwaitAcks()
{
    if
    :: owed > 0 -> awaitAcks(outwait)
    :: else
    fi;
    if
    :: owed > 0 && unanswered < inVain -> unanswered++
    :: else
    fi;
    owed = 0
}

/* Some PLCs never answer ENQ; one that is silent may have been off. */
#define worthAsking (everAnswered || unanswered < inVain)

inline settleTimeout()
{
    if
    :: holds(drained) -> drain(lateQuiet, lateQuiet)
    :: else
    fi;
    if
    :: holds(enquired) && (worthAsking || silences == inVain) -> enquire(enquiry)
    :: else
    fi;
    if
    :: !worthAsking -> owed = 0
    :: else
    fi;
    if
    :: holds(cleared) -> drain(clearing, (holds(inFull) -> clearing : lateQuiet))
    :: else
    fi
}

inline take()
{
    printf("> take %d\n", tookValue);
    assert(tookName == wanted);
    lastKind = data;
    lastWanted = wanted;
    lastValue = tookValue;
    lonely = false;
    taken = true
}

inline confirm()
{
    heard = bad;
    enquire(longEnquiry);
    outwaitAcks();
    if
    :: heard
    :: else -> take()
    fi
}

inline settleBad()
{
    if
    :: holds(drained) -> drain(quiet, quiet)
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

#define isLonely (lonely && holds(loneReply))
#define isStray (early && holds(earlyAsks))
#define mustConfirm ((holds(alsoBad) && unsure || !holds(alsoBad) && owed > 0) && holds(acksAwaited))

inline judge()
{
    if
    :: first == nothing || length < whole && first != refusal && !isStray ->
       settleTimeout();
       if
       :: front == refusal -> lastKind = nothing; lastWanted = wanted  /* an answer without bytes */
       :: else
       fi
    :: first != nothing && isStray -> strayed = true; settleTimeout()
    :: (first == refusal || length >= whole && bad) && !isStray && unsure && holds(alsoBad) ->
       confirm();
       if
       :: first == refusal -> lastKind = refusal; lastWanted = wanted
       :: else
       fi
    :: first == refusal && !isStray && !(unsure && holds(alsoBad)) ->
       if
       :: isLonely -> drain(quiet, quiet); lonely = heard
       :: !isLonely && lastKind == refusal && holds(alsoNak) -> drain(another, quiet)
       :: else
       fi;
       lastKind = refusal;
       lastWanted = wanted
    :: else ->
       if
       :: bad -> settleBad()
       :: !bad && mustConfirm -> confirm()
       :: !bad && !mustConfirm && isLonely ->
          drain(quiet, quiet);
          if
          :: heard
          :: else -> take()
          fi
       :: !bad && !mustConfirm && !isLonely && lastKind == data && isSame && holds(waitForAnother) ->
          if
          :: isRead && lastWanted == wanted -> waitsForOther = holds(alsoSame); take()
          :: else ->
             drain(another, (holds(alsoOther) -> quiet : another));
             if
             :: heard
             :: else -> take()
             fi
          fi
       :: else -> take()
       fi
    fi
}

inline forget()  /* what the next exchange does not depend on */
{
    taken = false; atOnce = false; noise = false; heard = false; early = false; answered = false;
    isSilent = false; front = nothing;
    bad = false; kind = nothing; first = nothing; length = 0;
    name = nobody; tookName = nobody; value = 0; tookValue = 0; copy = 0
}

active proctype host()
{
    bool answersEnq;  /* this PLC */
    bool met = true, lonely, unsure, strayed, waitsForOther, atOnce, noise, heard, isSilent, early, bad, answered, everAnswered;
    mtype kind, first, front, lastKind = nothing;
    byte dice, frames, acks, wanted, lastWanted = nobody, name, tookName, length, unanswered, silences, owed, held, lastSent = nobody;
    bit value, copy, tookValue, lastValue;

    if
    :: answersEnq = true
    :: answersEnq = false
    fi;
    goto running;

anew:  /* a host that knows nothing of the one before */
    printf("> restart\n");
    met = false; lonely = false; unsure = false; strayed = true; waitsForOther = false;
    everAnswered = false; unanswered = 0; silences = 0; owed = 0; held = 0;
    lastKind = nothing; lastWanted = nobody; lastValue = 0; lastSent = nobody;

running:
    do
#ifdef FRAMES  /* a search that ends after so many */
    :: frames == FRAMES -> break
    :: frames < FRAMES ->
#else
    ::
#endif
       if
       :: wanted = 0
       :: wanted = 1
       fi;
       printf("> want %d\n", wanted);
       forget();
       if
       :: (!met || lonely && holds(again)) && holds(greeted) -> greet()
       :: else
       fi;
       met = true;
       heard = false; answered = false; acks = 0;
#ifndef RESTLESS
       if
       :: !calm && !lonely -> strayed = false
       :: true
       fi;
#endif
       atOnce = !strayed;
       if
       :: isFirstWrite -> waitsForOther = false; drain(quiet, quiet)
       :: !isFirstWrite && waitsForOther && !isRepeated -> waitsForOther = false; drain(another, quiet)
       :: !isFirstWrite && holds(momentBefore) && !(waitsForOther && !isRepeated) -> drain(moment, lateQuiet)
       :: else
       fi;
       if
       :: owed > 0 && holds(acksAwaited) && !isRepeated -> outwaitAcks(); drain(lateQuiet, lateQuiet)
       :: else
       fi;
       heard = false;
       isSilent = true;
       front = nothing;
       unsure = owed > 0;
       lastSent = wanted;
       printf("> send %d\n", wanted);
#ifdef FRAMES
       frames++;
#endif
#ifdef TROUBLED
       frames = frames + !calm;
#endif
       answerRequest();
       receive();
       judge();
       silences = (!isSilent -> 0 : (silences < inVain -> silences + 1 : inVain));
#ifndef RESTLESS
       if
       :: calm = true
#ifdef TROUBLED  /* things go wrong in so many frames at most */
       :: frames < TROUBLED
#else
       :: true
#endif
       fi
#endif
    od
}

ltl progress { <>[]calm -> []<>taken }
