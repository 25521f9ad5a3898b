// A second client, independent of the first: reads, sets, polls and watches the agent at ADDRESS.
//
//     node client.mjs ADDRESS PROTO_FOLDER
//
// Prints one line for each thing that it saw; the test that runs it knows what they should be.
import { createRequire } from 'node:module';

const require = createRequire(`${process.cwd()}/`);
const grpc = require('@grpc/grpc-js');
const loader = require('@grpc/proto-loader');

const [address, folder] = process.argv.slice(2);
const definition = loader.loadSync('gnmi.proto', {
  includeDirs: [folder], keepCase: true, longs: String, enums: String, bytes: Buffer, oneofs: true,
});
const { gnmi } = grpc.loadPackageDefinition(definition);
const client = new gnmi.gNMI(address, grpc.credentials.createInsecure());

const path = (...names) => ({ elem: names.map((name) => (typeof name === 'string' ? { name } : name)) });
const classifier = path('qos', 'classifiers', { name: 'classifier', key: { name: '*' } }, 'state');
const textOf = ({ elem }) => elem.map(({ name, key }) =>
  `/${name}${Object.entries(key ?? {}).map(([k, v]) => `[${k}=${v}]`).join('')}`).join('');
const call = (method, request) => new Promise((resolve, reject) => {
  client[method](request, (error, response) => (error ? reject(error) : resolve(response)));
});
const print = (...words) => console.log(words.join(' '));

const capabilities = await call('Capabilities', {});
print('version', capabilities.gNMI_version, capabilities.supported_encodings.join(','));

const answer = await call('Get', { path: [classifier], type: 'STATE', encoding: 'JSON_IETF' });
for (const { path: at, val } of answer.notification[0].update)
  print('get', textOf(at), val.json_ietf_val.toString());

try {
  await call('Get', { path: [path('interfaces')] });
} catch (error) {
  print('error', grpc.status[error.code], error.details);
}

const queue = path('qos', 'queues', { name: 'queue', key: { name: 'q' } });
const value = { json_ietf_val: Buffer.from('{"name": "q", "config": {"name": "q"}}') };
const set = await call('Set', { update: [{ path: queue, val: value }] });
for (const { path: at, op } of set.response) print('set', op, textOf(at));

const polled = client.Subscribe();
polled.write({ subscribe: { mode: 'POLL', encoding: 'PROTO', subscription: [{ path: queue }] } });
let syncs = 0;
for await (const response of polled) {
  for (const { path: at, val } of response.update?.update ?? []) print('polled', textOf(at), val.string_val);
  if (response.response !== 'sync_response') continue;
  syncs += 1;
  if (syncs === 2) break;
  polled.write({ poll: {} });
}
polled.cancel();

const stream = client.Subscribe();
stream.write({ subscribe: { mode: 'STREAM', encoding: 'PROTO', subscription: [{ path: classifier }] } });
for await (const response of stream) {
  if (response.response === 'sync_response') {
    print('sync');
    continue;
  }
  for (const gone of response.update.delete ?? []) print('delete', textOf(gone));
  for (const { path: at, val } of response.update.update ?? []) print('update', textOf(at), val.string_val);
  if (response.update.update?.some(({ val }) => val.string_val === 'end')) break;
}
stream.cancel();
client.close();
