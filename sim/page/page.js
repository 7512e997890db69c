// The simulator's page: asks for what is new twice a second and shows it.
"use strict";

const API = "/api/v1";
const KEPT = 200;       // exchanges in the list
const EVERY = 500;      // milliseconds between two questions
const SPAN = 300;       // seconds that the timeline shows
const SLOT = 5;         // seconds of one of its marks
const LAYERS = {
  words: "Words of the array", document: "Document", message: "Message", wire: "Wire", pace: "Pace",
};
const NUMBERS = ["count", "after", "delayMs", "forMs", "chunk", "intervalMs", "bytes"];
const TEXTS = ["error", "code", "localized", "detail", "document"];

let lastSeen = 0;
let paused = false;
let recent = [];       // the exchanges of the timeline
const shown = {};      // what the lists show now, to leave them alone while nothing changes

const at = (id) => document.getElementById(id);

/** An element with a class, and children that are elements or plain text, never markup. */
function make(tag, className, ...children) {
  const element = document.createElement(tag);
  if (className) element.className = className;
  element.append(...children);
  return element;
}

// ---- asking ----

/** The token comes behind "#", which is never sent, and leaves the address line at once. */
function takeToken() {
  const given = new URLSearchParams(location.hash.slice(1)).get("token");
  if (given) {
    sessionStorage.setItem("token", given);
    history.replaceState(null, "", location.pathname);
  }
  return sessionStorage.getItem("token");
}
const token = takeToken();

async function ask(path, method = "GET", body = undefined) {
  const headers = method === "GET" ? {} : { "Content-Type": "application/json" };
  if (token) headers.Authorization = `Bearer ${token}`;
  const answer = await fetch(API + path, { method, headers, body: body && JSON.stringify(body) });
  const json = await answer.json();
  if (!answer.ok) throw new Error(json.error || answer.statusText);
  return json;
}

/** Whether `value` is not what `list` shows already. */
function changed(list, value) {
  const text = JSON.stringify(value);
  const differs = shown[list] !== text;
  shown[list] = text;
  return differs;
}

/** Does what a button asks for; shows the problem when it does not work out. */
async function act(work) {
  try {
    await work();
    at("problem").textContent = "";
    await refresh();
  } catch (failure) {
    at("problem").textContent = failure.message;
  }
}

// ---- clusters and volumes ----

const addresses = (list) => list.map((a) => `${a.address}:${a.port}`).join(", ");

function serverView(server) {
  const system = [server.hostname, server.osType, server.osVersion].filter(Boolean).join(" · ");
  const view = make("div", "server", make("strong", "id", server.id), system,
    make("small", "mono", addresses(server.addresses)));
  for (const port of server.interfaces)
    view.append(make("span", "tag mono", [port.id, port.type].filter(Boolean).join(" ")));
  return view;
}

function clusterView(cluster) {
  const view = make("div", "cluster", make("strong", "", cluster.name),
    cluster.joined ? make("span", "tag good", "joined") : make("span", "tag warn", "expected"),
    make("small", "mono", make("span", "id", cluster.id), " ", addresses(cluster.addresses)));
  if (cluster.primaryReports)
    view.append(make("small", "", `primary manager announced ${cluster.primaryReports}×`));
  view.append(...cluster.servers.map(serverView));
  return view;
}

/** A row, and a second one where there are snapshots. */
function volumeRows(volume, open) {
  const identity = (what, device, serial) =>
    make("small", "", `${what} `, make("span", "mono", `${device} / ${serial}`));
  const more = make("details", "", make("summary", "", "SCSI identities"),
    identity("original", volume.originalDeviceId, volume.originalSerialNumber),
    identity("alias", volume.aliasDeviceId, volume.aliasSerialNumber));
  more.dataset.volume = volume.id;
  more.open = open.has(volume.id);
  const name = make("td", "", make("strong", "id", volume.id), make("small", "", volume.name), more);
  const owner = make("td", "", volume.attachedTo ? make("span", "tag good id", volume.attachedTo) : "—");
  const data = make("td", "", ...volume.availableOn.map((id) => make("span", "tag id", id)));
  const rows = [make("tr", "", name, owner, data)];
  if (volume.snapshots.length) {
    const snapshots = make("td", "", ...volume.snapshots.map((s) => make("small", "", "snapshot ",
      make("span", "id", s.id), `: prepared ${s.prepared}, flushed ${s.flushed}`)));
    snapshots.colSpan = rows[0].childElementCount;
    rows.push(make("tr", "snapshots", snapshots));
  }
  return rows;
}

function showState(state) {
  if (!changed("state", state)) return;
  at("array").textContent = `${state.array.name} · SN ${state.array.serialNumber}`;
  at("clusterCount").textContent = state.clusters.length;
  at("volumeCount").textContent = state.volumes.length;
  at("clusters").replaceChildren(...state.clusters.map(clusterView));
  if (!state.clusters.length)
    at("clusters").append(make("p", "hint", "No cluster has joined yet."));
  const open = new Set([...at("volumes").querySelectorAll("details[open]")].map((d) => d.dataset.volume));
  at("volumes").replaceChildren(...state.volumes.flatMap((volume) => volumeRows(volume, open)));
}

// ---- exchanges ----

/** The cluster, server and volume that a call is about, those that it names. */
function subjects(exchange) {
  const members = exchange.members;
  return [["cluster", exchange.cluster], ["server", members.HcnId], ["volume", members.VolumeId],
    ["snapshot", members.SnapshotId]].filter(([, id]) => id);
}

/** The array's words; what it quotes are ids. */
const quoting = (words) => words.split(/("[^"]*")/).map((part, place) =>
  place % 2 ? make("span", "id", part) : part);

function exchangeView(exchange) {
  const good = exchange.outcome === "ok";
  const badge = make("span", exchange.fault ? "tag warn" : good ? "tag good" : "tag bad",
    exchange.fault || (good ? "ok" : "refused"));
  const about = make("span", "about", ...subjects(exchange).flatMap(([what, id]) =>
    [make("span", "tag id", make("span", "what", `${what} `), id)]));
  const line = make("summary", "", make("time", "", exchange.time.slice(11, 23)),
    make("span", "command", exchange.command.replace("::", " · ")), badge, about);
  if (!good) line.append(make("span", "outcome", ...quoting(exchange.outcome.replace(/^refused: /, ""))));
  for (const rule of exchange.brokenRules)
    line.append(make("span", "outcome", `breaks the rule ${rule}`));
  const who = `from ${exchange.clientAddress || "?"}, cluster ${exchange.hccId || "none"}, ` +
    `credentials ${exchange.credentials || "none"}, token ${exchange.authToken || "none"}, ` +
    `${(exchange.tookMicroseconds / 1000).toFixed(1)} ms`;
  const body = make("div", "body", make("small", "", who),
    make("h3", "", "Received"), make("pre", "", exchange.requestIndented),
    make("h3", "", "Sent"), make("pre", "", exchange.replyIndented));
  const item = make("li", "new", make("details", "", line, body));
  item.dataset.id = exchange.id;
  item.dataset.kind = exchange.fault ? "fault" : good ? "good" : "bad";
  item.dataset.words = line.textContent.toLowerCase();
  item.hidden = !isWanted(item);
  return item;
}

function isWanted(item) {
  const kind = at("outcome").value;
  return (!kind || item.dataset.kind === kind || (kind === "bad" && item.dataset.kind === "fault")) &&
    item.dataset.words.includes(at("filter").value.trim().toLowerCase());
}

function countExchanges() {
  const items = [...at("exchanges").children];
  const visible = items.filter((item) => !item.hidden).length;
  const all = items.length === KEPT ? `last ${KEPT}` : items.length;
  at("exchangeCount").textContent = visible === items.length ? all : `${visible} of ${all}`;
  at("noExchanges").hidden = items.length > 0;
}

function showExchanges(exchanges) {
  // Two answers may hold the same exchange: a button asks out of turn.
  for (const exchange of exchanges.filter((one) => one.id > lastSeen)) {
    lastSeen = Math.max(lastSeen, exchange.id);
    at("exchanges").prepend(exchangeView(exchange));
    recent.push({ at: Date.parse(exchange.time), command: exchange.command, fault: exchange.fault });
  }
  while (at("exchanges").childElementCount > KEPT) at("exchanges").lastElementChild.remove();
  countExchanges();
}

function filterExchanges() {
  for (const item of at("exchanges").children) item.hidden = !isWanted(item);
  countExchanges();
}

/** The arrow keys go from one exchange to the next, Home and End to the newest and the oldest. */
function moveInList(event) {
  const lines = [...at("exchanges").querySelectorAll("li:not([hidden]) summary")];
  const here = lines.indexOf(document.activeElement);
  const target = { ArrowDown: here + 1, ArrowUp: here - 1, Home: 0, End: lines.length - 1 }[event.key];
  if (target === undefined || !lines[target]) return;
  event.preventDefault();
  lines[target].focus();
}

// ---- timeline ----

function svg(tag, attributes, text = "") {
  const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  if (text) element.textContent = text;
  return element;
}

/** A row for each command that was called, a mark for each few seconds: higher for more calls,
 *  and the part that a fault struck in the colour of faults. */
function showTimeline(now) {
  recent = recent.filter((call) => now - call.at < SPAN * 1000);
  const slot = (call) => Math.floor((now - call.at) / (SLOT * 1000));
  const rows = [...new Set(recent.map((call) => call.command))].sort();
  const view = at("timeline");
  const [width, height, label] = [view.clientWidth, 22, 160];
  if (!changed("timeline", [width, recent.map((call) => [slot(call), call.command, call.fault])])) return;
  const step = (width - label) / (SPAN / SLOT);
  view.setAttribute("height", rows.length ? rows.length * height + 16 : 1);
  view.setAttribute("aria-label", `Calls of the last five minutes: ${recent.length}, ` +
    `struck by a fault: ${recent.filter((call) => call.fault).length}`);
  view.replaceChildren();
  rows.forEach((command, row) => {
    const base = (row + 1) * height;
    view.append(svg("text", { x: 0, y: base - 6 }, command.replace(/^.*::/, "")),
      svg("line", { x1: label, x2: width, y1: base - 2, y2: base - 2 }));
    const counts = new Map();
    for (const call of recent.filter((one) => one.command === command)) {
      const count = counts.get(slot(call)) || { calls: 0, faults: 0 };
      count.calls += 1;
      count.faults += call.fault ? 1 : 0;
      counts.set(slot(call), count);
    }
    for (const [place, { calls, faults }] of counts) {
      const tall = Math.min(4 + 3 * calls, height - 4);
      const struck = tall * faults / calls;
      const mark = svg("g", {});
      mark.append(svg("title", {}, `${command}: ${calls} call(s), ${faults} struck by a fault`),
        svg("rect", { class: "calls", x: width - (place + 1) * step, y: base - 2 - tall,
          width: step - 1, height: tall - struck }),
        svg("rect", { class: "faults", x: width - (place + 1) * step, y: base - 2 - struck,
          width: step - 1, height: struck }));
      view.append(mark);
    }
  });
  if (rows.length) {
    view.append(svg("text", { x: label, y: rows.length * height + 13 }, "5 minutes ago"),
      svg("text", { x: width, y: rows.length * height + 13, "text-anchor": "end" }, "now"));
  }
}

// ---- faults ----

/** One fault to choose; what it does stands beside it once it is chosen. */
function kindChoice(kind) {
  const choice = make("input", "");
  choice.type = "radio";
  choice.name = "fault";
  choice.value = kind.name;
  choice.required = true;
  const help = make("span", "hint", `The array ${kind.does}. The client sees: ${kind.clientSees}.` +
    (kind.runsCommand ? " The command does its work all the same." : " The command is not run."));
  return make("label", "kind", choice, make("span", "mono", kind.name), help);
}

function showKinds(kinds, commands) {
  for (const [layer, title] of Object.entries(LAYERS)) {
    const group = make("fieldset", "", make("legend", "", title),
      ...kinds.filter((kind) => kind.strikes === layer).map(kindChoice));
    at("kinds").append(group);
  }
  at("command").append(new Option("every command", "*"),
    ...commands.map((name) => new Option(name.replace("::", " · "), name)));
}

function ruleFromForm() {
  const rule = { command: at("command").value,
    fault: at("rule").elements.fault.value };
  for (const name of NUMBERS) if (at(name).value !== "") rule[name] = Number(at(name).value);
  for (const name of TEXTS) if (at(name).value !== "") rule[name] = at(name).value;
  return rule;
}

function ruleView(rule) {
  const calls = rule.count === 0 ? "every call" : `${rule.count}×`;
  const remove = make("button", "quiet right", "×");
  remove.title = "Take it back";
  remove.setAttribute("aria-label", `Take back ${rule.fault} of ${rule.command}`);
  remove.addEventListener("click", () => act(() => ask(`/faults/${rule.id}`, "DELETE")));
  const item = make("li", "", make("span", "", make("span", "tag warn", rule.fault),
    `${rule.command}, ${calls}${rule.after ? ` after ${rule.after}` : ""}`), remove);
  item.title = NUMBERS.concat(TEXTS).filter((name) => rule[name])
    .map((name) => `${name}: ${rule[name]}`).join("\n");
  return item;
}

function showFaults(rules) {
  if (!changed("rules", rules)) return;
  at("ruleCount").textContent = rules.length;
  at("rules").replaceChildren(...rules.map(ruleView));
  at("noRules").hidden = rules.length > 0;
}

// ---- all of it ----

async function refresh() {
  if (!at("kinds").childElementCount) {
    const [kinds, commands] = await Promise.all([ask("/faultKinds"), ask("/commands")]);
    if (!at("kinds").childElementCount) showKinds(kinds, commands);
  }
  const [exchanges, state, faults, clock] = await Promise.all([
    paused ? [] : ask(`/exchanges?documents=indented&last=${KEPT}&since=${lastSeen}`),
    ask("/state"), ask("/faults"), ask("/clock")]);
  if (!paused) showExchanges(exchanges);
  showState(state);
  showFaults(faults);
  showTimeline(Date.parse(clock.now));
}

function forgetExchanges() {
  at("exchanges").replaceChildren();
  recent = [];
  countExchanges();
}

async function keepFresh() {
  try {
    await refresh();
    at("live").textContent = "live";
    at("live").classList.add("on");
  } catch (failure) {
    at("live").textContent = failure instanceof TypeError ? "the simulator does not answer" : failure.message;
    at("live").classList.remove("on");
    // One that is started again counts from 1.
    lastSeen = 0;
    forgetExchanges();
  }
  setTimeout(keepFresh, EVERY);
}

const reset = (what) => act(async () => {
  await ask("/reset", "POST", { what });
  if (what === "log" || what === "all") forgetExchanges();
});

for (const button of document.querySelectorAll("[data-reset]"))
  button.addEventListener("click", () => reset(button.dataset.reset));
at("resetAll").addEventListener("click", () => at("confirm").showModal());
at("confirm").addEventListener("close", () => {
  if (at("confirm").returnValue === "yes") reset("all");
  at("confirm").returnValue = "";
});
at("pause").addEventListener("click", () => {
  paused = !paused;
  at("pause").setAttribute("aria-pressed", paused);
  at("pause").textContent = paused ? "Go on" : "Pause";
});
at("filter").addEventListener("input", filterExchanges);
at("outcome").addEventListener("change", filterExchanges);
at("exchanges").addEventListener("keydown", moveInList);
at("rule").addEventListener("submit", (event) => {
  event.preventDefault();
  act(() => ask("/faults", "POST", ruleFromForm()));
});
keepFresh();
