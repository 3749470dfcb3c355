/* SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
 * SPDX-License-Identifier: MIT
 *
 * Which frame the driver gives next. In each round the host queues what it likes, changes the plan
 * or the recipe list, raises or takes back a recipe request, asks for a frame and answers it well
 * or badly. At most one frame is in flight; at most three writes or one-off reads go out between
 * two cyclic reads; a write leaves the queue only when it was sent; and nothing waits for ever.
 *
 * Run with -DDROP=NAME one assumption or rule is left out; docs/late-replies.md explains them.
 */

#define most 4       /* waiting writes, and one-off reads */
#define maxBurst 3
#define failLimit 2

mtype = { idle, write, oneOff, cyclic, download, upload };

mtype kind = idle, sent;  /* of the exchange in progress; of the frame of this round */
byte writes, oneOffs, plan, entries, entry, burst, failures;
bool inFlight, downloadAsked, uploadAsked;

byte frames, startedSinceRead;  /* what is asserted of */
bool headWasSent;

#ifndef DROP
#define DROP 0
#endif
#define holds(what) (!((DROP) & what))

/* Assumptions: */
#define planStays 1      /* from some time on there is a plan, */
#define recipesEnd 2     /* no recipe request, */
#define writesPause 4    /* and, for one-off reads, no write that waits */
#define listHasEntry 8   /* a recipe request finds an entry in the list */

/* Rules: */
#define burstIsLimited 16
#define failureEnds 32   /* after some rejections an exchange fails */
#define frameStays 64    /* a frame in flight is given again */

#define recipeAsked (downloadAsked || uploadAsked)

inline hostActs()
{
    do
    :: writes < most -> writes++; printf("> write\n")
    :: oneOffs < most -> oneOffs++; printf("> oneOff\n")
    :: break
    od;
    if
    :: plan = 0; printf("> plan 0\n")
    :: plan = 1; printf("> plan 1\n")
    :: true
    fi;
    if
    :: !holds(listHasEntry) || !recipeAsked -> entries = 0; printf("> entries 0\n")
    :: !recipeAsked -> entries = 2; printf("> entries 2\n")
    :: true
    fi;
    if
    :: entries > 0 || !holds(listHasEntry) -> downloadAsked = true; printf("> download\n")
    :: entries > 0 || !holds(listHasEntry) -> uploadAsked = true; printf("> upload\n")
    :: downloadAsked = false; uploadAsked = false; printf("> takeBack\n")
    :: true
    fi
}

inline build()
{
    frames++;
    inFlight = true
}

inline start(what)
{
    kind = what;
    build()
}

inline chooseRecipe(what)
{
    if
    :: entry < entries -> kind = what; build()
    :: entry >= entries && kind != idle -> build()
    :: else
    fi
}

#define mayBurst (burst < maxBurst || !holds(burstIsLimited))

inline choose()
{
    if
    :: downloadAsked -> chooseRecipe(download)
    :: !downloadAsked && uploadAsked -> chooseRecipe(upload)
    :: else ->
       if
       :: mayBurst && writes > 0 -> burst++; startedSinceRead++; headWasSent = true; start(write)
       :: mayBurst && writes == 0 && oneOffs > 0 -> burst++; startedSinceRead++; start(oneOff)
       :: else ->
          if
          :: plan > 0 -> burst = 0; startedSinceRead = 0; start(cyclic)
          :: else -> kind = idle
          fi
       fi
    fi
}

inline end(isGood)
{
    frames--;
    inFlight = false;
    failures = 0;
    if
    :: kind == write ->
       assert(headWasSent || writes == 0);
       headWasSent = false;
       writes = (writes > 0 -> writes - 1 : 0)
    :: kind == oneOff -> oneOffs = (isGood && oneOffs > 0 -> oneOffs - 1 : 0)
    :: kind == download || kind == upload ->
       entry = (isGood -> entry + 1 : entries);
       if
       :: entry >= entries && kind == download -> downloadAsked = false; entry = 0
       :: entry >= entries && kind == upload -> uploadAsked = false; entry = 0
       :: else
       fi
    :: else
    fi
}

inline answer()
{
    if
    :: printf("> good\n"); end(true)
    :: printf("> bad\n");
       if
       :: failures + 1 < failLimit || !holds(failureEnds) -> failures = (failures + 1) % failLimit
       :: else -> end(false)
       fi
    fi
}

active proctype host()
{
    do
    :: hostActs();
       sent = idle;
       if
       :: !inFlight || !holds(frameStays) -> choose()
       :: else
       fi;
       if
       :: inFlight ->
          sent = kind;
          printf("> frame %e %d %d %d\n", kind, writes, oneOffs, frames);
          assert(frames <= 1);
          assert(startedSinceRead <= maxBurst);
          answer()
       :: else -> printf("> nothing\n")
       fi
    od
}

#define served ((plan > 0 || !holds(planStays)) && (!recipeAsked || !holds(recipesEnd)))

ltl reads_go_out { <>[]served -> []<>(sent == cyclic) }
ltl writes_go_out { <>[]served -> []<>(writes == 0 || sent == write) }
ltl one_offs_go_out {
    <>[](served && (writes == 0 || !holds(writesPause))) -> []<>(oneOffs == 0 || sent == oneOff) }
