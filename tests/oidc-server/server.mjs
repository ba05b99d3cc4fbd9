// A standards-conformant OpenID Connect provider on 127.0.0.1 for the sign-in tests: its own
// login and consent pages (any login and password are accepted), PKCE required, refresh tokens
// only for offline_access granted with prompt=consent, userinfo and token revocation.
//
//   node server.mjs --access-token-seconds N --client ID:SECRET:METHOD [--client ...]
//
// METHOD is client_secret_basic or client_secret_post. Clients are native applications whose
// redirect URI is http://127.0.0.1/callback on any port. Prints "issuer <url>" once it listens,
// then one line per token request: "grant <grant_type>" or "grant-error <error>", and
// "revoked" per revoked grant. Ends when its standard input closes.
import http from 'node:http';
import process from 'node:process';
import Provider from 'oidc-provider';

function options(argv) {
  const parsed = { accessTokenSeconds: 3600, clients: [] };
  for (let i = 2; i < argv.length; i += 2) {
    const [name, value] = [argv[i], argv[i + 1]];
    if (value === undefined) throw new Error(`${name} needs a value`);
    if (name === '--access-token-seconds') {
      parsed.accessTokenSeconds = Number.parseInt(value, 10);
    } else if (name === '--client') {
      const [id, secret, method] = value.split(':');
      parsed.clients.push({
        client_id: id,
        client_secret: secret,
        token_endpoint_auth_method: method,
        application_type: 'native',
        redirect_uris: ['http://127.0.0.1/callback'],
        grant_types: ['authorization_code', 'refresh_token'],
        response_types: ['code'],
      });
    } else {
      throw new Error(`unknown option ${name}`);
    }
  }
  return parsed;
}

const settings = options(process.argv);
const server = http.createServer();
server.listen(0, '127.0.0.1', () => {
  const issuer = `http://127.0.0.1:${server.address().port}`;
  const provider = new Provider(issuer, {
    clients: settings.clients,
    pkce: { required: () => true },
    ttl: { AccessToken: settings.accessTokenSeconds },
    features: { revocation: { enabled: true } },
    scopes: ['openid', 'offline_access'],
    claims: { openid: ['sub'], email: ['email'] },
    cookies: { keys: ['sign-in-tests-only'] },
    findAccount: async (_ctx, sub) => ({
      accountId: sub,
      claims: async () => ({ sub, email: `${sub}@example.test` }),
    }),
  });
  provider.on('grant.success', (ctx) => console.log(`grant ${ctx.oidc.params.grant_type}`));
  provider.on('grant.error', (_ctx, error) => console.log(`grant-error ${error.error}`));
  provider.on('grant.revoked', () => console.log('revoked'));
  server.on('request', provider.callback());
  console.log(`issuer ${issuer}`);
});
process.stdin.on('end', () => process.exit(0));
process.stdin.resume();
