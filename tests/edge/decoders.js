// What vornex-edge publishes, decoded by the npm package sparkplug-payload, and commands that this package encodes.
//   node decoders.js EDGE SIMULATOR PLANT WORK_DIR    with the package in NODE_PATH and mosquitto in PATH
'use strict';
const assert = require('assert');
const fs = require('fs');
const net = require('net');
const path = require('path');
const { spawn, spawnSync } = require('child_process');
const readline = require('readline');
const sparkplug = require('sparkplug-payload').get('spBv1.0');

const [edge, simulator, plant, work] = process.argv.slice(2);
const WaitLimit = 20000;  // ms
const Place = 'spBv1.0/plant';
const started = [];
const heard = [];  // {topic, type, payload}
const waiting = [];

function start(command, ...words) {
  const child = spawn(command, words, { stdio: ['ignore', 'pipe', 'pipe'] });
  child.log = '';
  child.stderr.on('data', (bytes) => { child.log += bytes; });
  started.push(child);
  return child;
}

function within(what, promise) {
  let timer;
  const late = new Promise((_, reject) => {
    timer = setTimeout(() => reject(new Error(`${what} did not come\n${started.map((each) => each.log).join('')}`)), WaitLimit);
  });
  return Promise.race([promise, late]).finally(() => clearTimeout(timer));
}

function freePort() {
  return new Promise((resolve) => {
    const server = net.createServer().listen(0, '127.0.0.1', () => {
      const { port } = server.address();
      server.close(() => resolve(port));
    });
  });
}

function lines(child, take) { readline.createInterface({ input: child.stdout }).on('line', take); }

// The next message, from place `from` on, of this type for which `right` holds.
let place = 0;
function next(type, right = () => true) {
  return within(type, new Promise((resolve) => {
    const look = () => {
      for (; place < heard.length; ++place) {
        const message = heard[place];
        if (message.type === type && right(message.payload)) {
          ++place;
          resolve(message.payload);
          return true;
        }
      }
      return false;
    };
    if (!look()) waiting.push(look);
  }));
}

function take(line) {
  const [topic, hex] = line.split(' ');
  const type = topic.split('/')[2];
  if (type === 'PROBE') {
    heard.probed = true;
  } else if (!type.endsWith('CMD')) {
    heard.push({ topic, type, payload: sparkplug.decodePayload(Buffer.from(hex, 'hex')) });
  }
  for (const look of waiting.splice(0)) if (!look()) waiting.push(look);
}

function find(payload, name) { return payload.metrics.find((metric) => metric.name === name); }

function publish(port, topic, payload) {
  const file = path.join(work, 'command');
  fs.writeFileSync(file, payload);
  const done = spawnSync('mosquitto_pub', ['-p', String(port), '-q', '1', '-t', topic, '-f', file]);
  assert.strictEqual(done.status, 0, String(done.stderr));
}

function command(port, topic, metric) {
  publish(port, topic, Buffer.from(sparkplug.encodePayload({ timestamp: Date.now(), metrics: [metric] })));
}

async function listen(port) {
  const subscriber = start('mosquitto_sub', '-p', String(port), '-q', '1', '-t', 'spBv1.0/#', '-F', '%t %x');
  lines(subscriber, take);
  for (const end = Date.now() + WaitLimit; !heard.probed; await new Promise((resolve) => setTimeout(resolve, 50))) {
    assert(Date.now() < end, 'no subscription');
    spawnSync('mosquitto_pub', ['-p', String(port), '-t', `${Place}/PROBE`, '-m', 'x']);
  }
}

async function startPlant() {
  const port = await freePort();
  const conf = path.join(work, 'broker.conf');
  fs.writeFileSync(conf, `listener ${port} 127.0.0.1\nallow_anonymous true\nlog_type error\n`);
  start('mosquitto', '-c', conf);
  const controller = start(simulator, '-l', plant, '-p', '0', '-q');
  const target = await within('the simulator', new Promise((resolve) => {
    lines(controller, (line) => { if (line.startsWith('listening ')) resolve(line.slice('listening '.length)); });
  }));
  await listen(port);
  const program = start(edge, '-l', plant, '-t', target, '--broker', `127.0.0.1:${port}`, '--group', 'plant', '--node', 'line3',
    '--device', 'press3', '--poll', 'Setpoint Enable Speed Cycles Pressure Alarms Motors*.Speed Motors*.Id Line*.Level Line*.State Product Flow @ 20',
    '--writable', 'Setpoint', '--state', path.join(work, 'state'));
  return { port, program };
}

// No number is missing, every name was announced with its type, and values have the type's form.
function checkNumbersAndNames() {
  let seq = null;
  let types = new Map();
  for (const { type, payload } of heard) {
    if (type === 'NDEATH') continue;
    if (type === 'NBIRTH') assert.strictEqual(Number(payload.seq), 0);
    else assert.strictEqual(Number(payload.seq), (seq + 1) % 256, `seq of a ${type}`);
    seq = Number(payload.seq);
    if (type === 'DBIRTH') types = new Map(payload.metrics.map((metric) => [metric.name, metric.type]));
    if (type !== 'DDATA') continue;
    for (const metric of payload.metrics) {
      assert(types.has(metric.name), `${metric.name} was not announced`);
      assert.strictEqual(metric.type, types.get(metric.name), metric.name);
      assert(metric.timestamp, `${metric.name} has no time`);
    }
  }
  return types;
}

async function main() {
  fs.rmSync(work, { recursive: true, force: true });
  fs.mkdirSync(work, { recursive: true });
  const { port, program } = await startPlant();
  const born = await next('NBIRTH');
  const device = await next('DBIRTH');
  assert.strictEqual(find(device, 'Setpoint').value, 1500);
  assert.strictEqual(find(device, 'Enable').value, true);
  assert.strictEqual(find(device, 'Motors/1/Id').value, 7);
  assert(find(device, 'Motors/1/Speed').value >= 1400 && find(device, 'Motors/1/Speed').value <= 1500);
  const flow = find(device, 'Flow');
  assert.strictEqual(flow.type, 'Double');
  assert.strictEqual(flow.properties.engUnit.value, 'l/min');
  assert.strictEqual(flow.properties.engHigh.value, 250);
  const before = find(device, 'Cycles').value;
  for (let i = 0; i < 20; ++i) await next('DDATA');
  const after = find(await next('DDATA', (payload) => find(payload, 'Cycles')), 'Cycles').value;
  assert(after.compare(before) > 0, `Cycles went from ${before} to ${after}`);

  command(port, `${Place}/DCMD/line3/press3`, { name: 'Setpoint', type: find(device, 'Setpoint').type, value: -100 });
  const answer = await next('DDATA', (payload) => find(payload, 'Setpoint'));
  assert.strictEqual(find(answer, 'Setpoint').value, -100);

  command(port, `${Place}/NCMD/line3`, { name: 'Node Control/Rebirth', type: 'Boolean', value: true });
  const again = await next('NBIRTH');
  assert.strictEqual(String(find(again, 'bdSeq').value), String(find(born, 'bdSeq').value));
  assert.strictEqual(find(await next('DBIRTH'), 'Setpoint').value, -100);
  program.kill('SIGTERM');
  const death = await next('NDEATH');
  assert.strictEqual(String(find(death, 'bdSeq').value), String(find(born, 'bdSeq').value));

  const types = checkNumbersAndNames();
  const kinds = [...new Set(types.values())].sort().join(', ');
  console.log(`ok    sparkplug-payload: ${heard.length} messages decoded, ${types.size} metrics (${kinds}), two commands encoded`);
}

main().catch((mistake) => {
  console.log(`FAIL  ${mistake.stack}`);
  process.exitCode = 1;
}).finally(() => { for (const each of started) each.kill('SIGKILL'); });
